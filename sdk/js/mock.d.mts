/// <reference path="./vantu.d.ts" />
// Types of mock.mjs. Bridges and events typed in vantu.d.ts keep their
// argument, answer and detail types here; other names take any JSON.

/** The arguments a call of N carries. */
export type ArgsOf<N extends string> = N extends VantuH5.BridgeName ? VantuH5.Args<N> : VantuH5.Json;
/** What a call of N may be answered with. */
export type AnswerOf<N extends string> = N extends VantuH5.BridgeName ? VantuH5.Answer<N> : unknown;
/** The detail argument of emit(name, ...): optional for events whose detail is null. */
export type DetailParam<K extends string> = K extends VantuH5.EventName
  ? (VantuH5.Events[K] extends null ? [detail?: null] : [detail: VantuH5.Events[K]])
  : [detail?: unknown];

/** One call the page made. */
export interface MockCall<N extends string = string> {
  /** The SDK's id of the call. */
  readonly id: number;
  readonly bridge: N;
  /** The arguments, as the page sent them (`{}` when it sent none). */
  readonly data: ArgsOf<N>;
  /** The answers sent so far, in order. */
  readonly answers: readonly AnswerOf<N>[];
  /** Answers the call (again). */
  answer(payload: AnswerOf<N>): void;
  /** Reports the progress of the call's transfer; `total` null (the default) while unknown. */
  progress(received: number, total?: number | null): void;
}

/**
 * Works out the answer to a call: the value returned (or resolved) is the
 * answer, `undefined` none. `call.answer` and `call.progress` send more.
 */
export type Handler<N extends string> = (
  data: ArgsOf<N>,
  call: MockCall<N>,
) => AnswerOf<N> | undefined | PromiseLike<AnswerOf<N> | undefined>;

export interface VantuMock {
  /** The `vantu` installed on the global. */
  readonly vantu: VantuH5.Sdk;
  /** Every call of `bridge` is answered once with `payload`. */
  answer<N extends string>(bridge: N, payload: AnswerOf<N>): this;
  /** Every call of `bridge` is answered with each payload in turn; an empty list never answers. */
  answers<N extends string>(bridge: N, payloads: readonly AnswerOf<N>[]): this;
  /** Every call of `bridge` is answered by `handler`. */
  handle<N extends string>(bridge: N, handler: Handler<N>): this;
  /** Sends the page an event, at once; the detail is null when left out. */
  emit<K extends string>(name: K, ...detail: DetailParam<K>): void;
  /** The calls the page made, in the order it made them. */
  readonly calls: readonly MockCall[];
  /** The calls of one bridge, in order. */
  callsTo<N extends string>(bridge: N): MockCall<N>[];
  /** Exceptions of the page's callbacks and listeners, and of handlers. */
  readonly errors: readonly unknown[];
  /** Resolves once every answer due so far has reached the page and its reactions have run. */
  flush(): Promise<void>;
  /** The page is hidden (pagehide): every waiting invoke is rejected with code "unload". */
  hidePage(): void;
  /** Forgets answers, calls, errors and the page's listeners; the installed `vantu` stays. */
  reset(): void;
  /** Removes the `vantu` from the global. */
  uninstall(): void;
}

export interface MockOptions {
  /** Where to install `vantu`; globalThis when left out. Its timers are used when it has them. */
  global?: object;
}

/** Installs a mock `vantu` on a global, or returns the mock installed there already. */
export declare function installMock(options?: MockOptions): VantuMock;
