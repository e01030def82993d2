// A stand-in for the vantu-h5 container, for page authors' unit tests (in
// Node or a browser test runner): installs a `vantu` on a global whose calls
// are answered by what the test registered, and lets the test send events and
// progress and look at the calls made.
//
//   import { installMock } from "vantu-h5-sdk/mock";
//   const mock = installMock();
//   mock.answer("vantuNetworkType", { data: "Wifi" });
//
// The `vantu` it installs is the SDK itself (vantu.js, run against a private
// root) talking to this module instead of a container, so a page meets the
// same argument checks, timeouts, errors and event rules as in a container.
// Everything the mock sends goes through `vantu.__receive` as JSON text: the
// page gets fresh copies of plain JSON values, as from a container.
// See README.md.

const SDK_URL = new URL("./vantu.js", import.meta.url);
const sdkSource = await readText(SDK_URL);

async function readText(url) {
  if (url.protocol === "file:") {
    const fsModule = "node:fs/promises";  // named indirectly: bundlers for browsers must not resolve it
    const { readFile } = await import(/* @vite-ignore */ fsModule);
    return readFile(url, "utf8");
  }
  const response = await fetch(url);
  if (!response.ok) throw new Error(`vantu mock: cannot load the SDK from ${url} (${response.status})`);
  return response.text();
}

// The real task queue of this realm, taken before any fake timers exist:
// flush() waits on it so that every promise reaction of the page has run.
const nextTask = (() => {
  if (typeof globalThis.setImmediate === "function") {
    const setImmediate = globalThis.setImmediate;
    return () => new Promise((resolve) => setImmediate(resolve));
  }
  const setTimeout = globalThis.setTimeout.bind(globalThis);
  return () => new Promise((resolve) => setTimeout(resolve, 0));
})();

const UNKNOWN_BRIDGE_CODE = 2;
const mocks = new WeakMap();  // installed vantu -> its mock

function checkName(what, name) {
  if (typeof name !== "string" || name.length === 0) throw new TypeError(`vantu mock: ${what} must be a non-empty string`);
}

function isByteCount(n) { return Number.isSafeInteger(n) && n >= 0; }
function isThenable(value) { return value !== null && typeof value === "object" && typeof value.then === "function"; }

// The event the SDK posts a call with; the mock takes every one.
class PostEvent {
  constructor(type, init) {
    this.type = type;
    this.detail = init && init.detail;
  }
  preventDefault() {}
}

// One call the page made, as the test sees it: handed to a handler and
// listed in mock.calls.
class MockCall {
  #send;
  constructor(message, send) {
    this.id = message.id;
    this.bridge = message.bridge;
    this.data = message.data;
    this.answers = [];
    this.#send = send;
  }

  /** Answers the call (again): any JSON value. */
  answer(payload) {
    if (payload === undefined) throw new TypeError(`vantu mock: an answer to "${this.bridge}" must be a JSON value, not undefined`);
    if (this.#send([[0, this.id, payload]], `the answer to "${this.bridge}"`)) this.answers.push(payload);
  }

  /** Reports the progress of the call's transfer; total null while unknown. */
  progress(received, total = null) {
    if (!isByteCount(received) || !(total === null || isByteCount(total)))
      throw new TypeError("vantu mock: progress is a byte count received and a total byte count or null");
    this.#send([[1, this.id, { received, total }]], `the progress of "${this.bridge}"`);
  }
}

class VantuMock {
  #target;
  #engine;
  #vantu;
  #replies = new Map();     // bridge -> (data, call) => answers to send
  #calls = [];
  #errors = [];
  #pending = new Set();     // replies being worked out (handlers' promises)
  #listeners = new Map();   // name -> Set of listeners added through the page's vantu
  #pagehide = [];
  #generation = 0;          // answers due from before a reset are dropped

  constructor(target) {
    this.#target = target;
    const root = this.#root();
    new Function("window", "globalThis", `${sdkSource}\n//# sourceURL=${SDK_URL.href}`)(root, root);
    this.#engine = root.vantu;
    this.#vantu = Object.freeze({
      ...this.#engine,
      on: (name, listener) => {
        const unsubscribe = this.#engine.on(name, listener);
        if (!this.#listeners.has(name)) this.#listeners.set(name, new Set());
        this.#listeners.get(name).add(listener);
        return unsubscribe;
      },
      off: (name, listener) => {
        this.#engine.off(name, listener);
        this.#listeners.get(name)?.delete(listener);
      },
    });
  }

  // What the SDK sees as its window: a document that hands every call to
  // the mock, and the target's timers, looked up at each use so that fake
  // timers installed later are honoured (the realm's own when it has none).
  #root() {
    const timers = () => (typeof this.#target.setTimeout === "function" ? this.#target : globalThis);
    return {
      CustomEvent: PostEvent,
      document: {
        dispatchEvent: (event) => {
          if (event.type !== "vantu:post") return true;
          this.#take(event.detail);
          return false;
        },
      },
      setTimeout: (fn, ms) => timers().setTimeout(fn, ms),
      clearTimeout: (id) => timers().clearTimeout(id),
      queueMicrotask: (fn) => { Promise.resolve().then(fn); },
      reportError: (error) => this.#report(error),
      addEventListener: (type, listener) => { if (type === "pagehide") this.#pagehide.push(listener); },
    };
  }

  #report(error) {
    this.#errors.push(error);
    if (typeof this.#target.reportError === "function") this.#target.reportError(error);
  }

  // Sends entries to the page; false when they belong to an earlier test.
  #sender(generation) {
    return (entries, what) => {
      if (generation !== this.#generation) return false;
      let text;
      try {
        text = JSON.stringify(entries);
      } catch (e) {
        throw new TypeError(`vantu mock: ${what} cannot be sent as JSON: ${e.message}`);
      }
      this.#engine.__receive(text);
      return true;
    };
  }

  // A call posted by the page: recorded now, answered once the call has
  // returned, as a container would. Answers known at once go out in the
  // order the calls were made.
  #take(text) {
    const call = new MockCall(JSON.parse(text), this.#sender(this.#generation));
    this.#calls.push(call);
    const reply = this.#replies.get(call.bridge) ?? unknownBridge;
    const send = (answers) => { for (const payload of answers) call.answer(payload); };
    const work = Promise.resolve()
      .then(() => {
        const answers = reply(call.data, call);
        return isThenable(answers) ? answers.then(send) : send(answers);
      })
      .catch((error) => this.#report(error))
      .finally(() => this.#pending.delete(work));
    this.#pending.add(work);
  }

  /** The `vantu` installed on the global. */
  get vantu() { return this.#vantu; }

  /** Every call of `bridge` is answered once with `payload`. */
  answer(bridge, payload) {
    checkName("a bridge name", bridge);
    if (payload === undefined) throw new TypeError(`vantu mock: an answer to "${bridge}" must be a JSON value, not undefined`);
    this.#replies.set(bridge, () => [payload]);
    return this;
  }

  /** Every call of `bridge` is answered with each payload in turn; [] never answers. */
  answers(bridge, payloads) {
    checkName("a bridge name", bridge);
    if (!Array.isArray(payloads)) throw new TypeError(`vantu mock: the answers to "${bridge}" must be an array`);
    const list = [...payloads];
    this.#replies.set(bridge, () => list);
    return this;
  }

  /**
   * Every call of `bridge` is answered by `handler(data, call)`: what it
   * returns (or its promise resolves with) is the answer, `undefined` none;
   * `call.answer` and `call.progress` send more, at any time.
   */
  handle(bridge, handler) {
    checkName("a bridge name", bridge);
    if (typeof handler !== "function") throw new TypeError(`vantu mock: the handler of "${bridge}" must be a function`);
    const answersOf = (payload) => (payload === undefined ? [] : [payload]);
    this.#replies.set(bridge, (data, call) => {
      const payload = handler(data, call);
      return isThenable(payload) ? Promise.resolve(payload).then(answersOf) : answersOf(payload);
    });
    return this;
  }

  /** Sends the page an event, at once. */
  emit(name, detail = null) {
    checkName("an event name", name);
    this.#sender(this.#generation)([[2, name, detail]], `the detail of "${name}"`);
  }

  /** The calls the page made, in the order it made them. */
  get calls() { return [...this.#calls]; }

  /** The calls of one bridge, in order. */
  callsTo(bridge) { return this.#calls.filter((call) => call.bridge === bridge); }

  /** Exceptions of the page's callbacks and listeners, and of handlers. */
  get errors() { return [...this.#errors]; }

  /**
   * Resolves once every answer due so far has reached the page and the
   * page's reactions to it have run. A handler whose promise never settles
   * keeps it waiting.
   */
  async flush() {
    do {
      await Promise.allSettled([...this.#pending]);
      await nextTask();
    } while (this.#pending.size > 0);
  }

  /** The page is hidden (pagehide): every waiting invoke is rejected with code "unload". */
  hidePage() {
    for (const listener of this.#pagehide) listener({ type: "pagehide", persisted: false });
  }

  /**
   * Back to a fresh mock for the next test: no registered answers, calls or
   * errors, and no listeners the page added. Answers due to earlier calls
   * are dropped. The installed `vantu` stays the same object.
   */
  reset() {
    this.#generation++;
    this.#replies.clear();
    this.#calls = [];
    this.#errors = [];
    this.#pending.clear();
    for (const [name, listeners] of this.#listeners) {
      for (const listener of listeners) this.#engine.off(name, listener);
    }
    this.#listeners.clear();
  }

  /** Removes the `vantu` from the global; nothing is answered any more. */
  uninstall() {
    this.#generation++;
    if (this.#target.vantu === this.#vantu) delete this.#target.vantu;
    mocks.delete(this.#vantu);
  }
}

function unknownBridge(data, call) {
  return [{ error: UNKNOWN_BRIDGE_CODE, message: `Unknown bridge: ${call.bridge}` }];
}

/**
 * Installs a mock `vantu` on `global` (globalThis when left out) and
 * returns the mock that drives it; on a global that has this mock already,
 * returns that one. Install it before the page's code loads "vantu-h5-sdk",
 * which keeps the `vantu` it finds.
 */
export function installMock({ global: target = globalThis } = {}) {
  if (target === null || (typeof target !== "object" && typeof target !== "function"))
    throw new TypeError("vantu mock: the global must be an object");
  if (target.vantu !== undefined) {
    const installed = mocks.get(target.vantu);
    if (installed) return installed;
    throw new Error("vantu mock: this global has a vantu already (the SDK itself?); install the mock before anything loads vantu-h5-sdk");
  }
  const mock = new VantuMock(target);
  Object.defineProperty(target, "vantu", { value: mock.vantu, enumerable: true, writable: false, configurable: true });
  mocks.set(mock.vantu, mock);
  return mock;
}
