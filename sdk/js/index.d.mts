/// <reference path="./vantu.d.ts" />
// Types of index.mjs; the bridge types themselves are in the VantuH5 namespace.
export declare const call: VantuH5.Sdk["call"];
export declare const invoke: VantuH5.Sdk["invoke"];
export declare const on: VantuH5.Sdk["on"];
export declare const off: VantuH5.Sdk["off"];
export declare const VantuError: VantuH5.Sdk["VantuError"];
export declare const version: string;
declare const sdk: VantuH5.Sdk;
export default sdk;
export type Bridges = VantuH5.Bridges;
export type BridgeName = VantuH5.BridgeName;
export type Args<N extends BridgeName> = VantuH5.Args<N>;
export type Answer<N extends BridgeName> = VantuH5.Answer<N>;
export type InvokeOptions = VantuH5.InvokeOptions;
export type CallOptions = VantuH5.CallOptions;
export type Progress = VantuH5.Progress;
export type FlatError = VantuH5.FlatError;
export type Events = VantuH5.Events;
export type EventName = VantuH5.EventName;
