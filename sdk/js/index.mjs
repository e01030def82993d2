// ES-module face of the SDK for page authors:
//   import { invoke } from "vantu-h5-sdk";
// Inside a container the SDK is already injected and is reused as it is;
// elsewhere this loads it, and its calls then fail clearly for want of a
// native side.
import "./vantu.js";

const sdk = globalThis.vantu;

export const call = sdk.call;
export const invoke = sdk.invoke;
export const on = sdk.on;
export const off = sdk.off;
export const VantuError = sdk.VantuError;
export const version = sdk.version;
export default sdk;
