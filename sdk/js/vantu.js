/*
 * vantu-h5 JavaScript SDK: how a page calls the native bridges.
 *
 * A plain script (no modules, no build step) that the container injects
 * into the top frame before the page's own scripts run. Loading it again,
 * by the container or by the page, changes nothing.
 *
 *   vantu.call(name, data, callback, {onProgress})
 *                                       callback runs once per answer
 *   vantu.invoke(name, data, {timeout, onProgress})
 *                                       Promise of the first answer
 *   vantu.on(name, listener)            events from the native side;
 *                                       returns a function that unsubscribes
 *   vantu.off(name, listener)
 *
 * The native side answers through __deliver(id, payload), one answer per
 * evaluation, or __receive(batch), many entries per evaluation.
 *
 * See docs/js-sdk.md.
 */
(function (root) {
  "use strict";

  if (root.vantu && root.vantu.__vantuSdk === true) return;

  /*
   * Transport, page -> native. Takes the message text
   * JSON.stringify({id, bridge, data}) and returns whether a native side
   * took it. The native listener of "vantu:post" takes a message by calling
   * event.preventDefault(); an event that nobody takes means the page is not
   * running in a container (a plain browser, say), and the call fails at once.
   * The native side may change this body as long as that meaning is kept.
   */
  function post(messageText) {
    var doc = root.document;
    if (!doc || typeof doc.dispatchEvent !== "function" || typeof root.CustomEvent !== "function") return false;
    return !doc.dispatchEvent(new root.CustomEvent("vantu:post", { detail: messageText, cancelable: true }));
  }

  var VERSION = "1.1.0";
  var NO_NATIVE_CODE = 2;

  class VantuError extends Error {
    constructor(code, message, bridge) {
      super(message);
      this.name = "VantuError";
      this.code = code;        // "no-native" | "timeout" | "unload" | "bad-argument"
      this.bridge = bridge;
    }
  }

  // id -> {bridge, onAnswer, onProgress, invoke}. Calls live until the page goes away;
  // an invoke's entry is removed at its first answer, timeout or unload.
  var pending = new Map();
  var lastId = 0;

  function report(error) {
    // An exception in a page's callback must not break the delivery of
    // other answers; it still reaches the console.
    if (typeof root.reportError === "function") root.reportError(error);
    else root.setTimeout(function () { throw error; }, 0);
  }

  function later(fn) {
    if (typeof root.queueMicrotask === "function") root.queueMicrotask(fn);
    else Promise.resolve().then(fn);
  }

  function argumentProblem(name, data) {
    if (typeof name !== "string" || name.length === 0) return "the bridge name must be a non-empty string";
    if (data !== undefined && data !== null && (typeof data !== "object" || Array.isArray(data)))
      return "the data of \"" + name + "\" must be an object";
    return null;
  }

  function noNativeMessage(name) {
    return "vantu: no native side answered the call to \"" + name +
      "\"; the page is not running inside a vantu-h5 container";
  }

  // Sends one call: {id}, or {problem, message} saying why it could not.
  function send(name, data, entry) {
    var id = ++lastId;
    var text;
    try {
      text = JSON.stringify({ id: id, bridge: name, data: data == null ? {} : data });
    } catch (e) {
      return { problem: "bad-argument", message: "vantu: the data of \"" + name + "\" cannot be sent as JSON: " + e.message };
    }
    entry.id = id;
    pending.set(id, entry);
    var taken = false;
    try { taken = post(text) === true; } catch (e) { taken = false; }
    if (!taken) {
      pending.delete(id);
      return { problem: "no-native", message: noNativeMessage(name) };
    }
    return { id: id };
  }

  // Why the options of a call cannot be used, or null.
  function optionsProblem(options) {
    if (options == null) return null;
    if (typeof options !== "object") return "the options must be an object";
    if (options.onProgress !== undefined && typeof options.onProgress !== "function") return "onProgress must be a function";
    return null;
  }

  function call(name, data, callback, options) {
    var problem = argumentProblem(name, data) || optionsProblem(options);
    if (problem) throw new TypeError("vantu.call: " + problem);
    if (callback !== undefined && typeof callback !== "function")
      throw new TypeError("vantu.call: the callback of \"" + name + "\" must be a function");
    var onAnswer = callback || function () {};
    var onProgress = options == null ? undefined : options.onProgress;
    var sent = send(name, data, { bridge: name, onAnswer: onAnswer, onProgress: onProgress, invoke: false });
    if (sent.problem === "bad-argument") throw new TypeError(sent.message);
    if (sent.problem === "no-native") {
      // Answered like a refused native call, and never before call returns.
      later(function () {
        try { onAnswer({ error: NO_NATIVE_CODE, message: sent.message }); } catch (e) { report(e); }
      });
      return 0;
    }
    return sent.id;
  }

  function invoke(name, data, options) {
    return new Promise(function (resolve, reject) {
      var problem = argumentProblem(name, data) || optionsProblem(options);
      var timeout = options == null ? undefined : options.timeout;
      if (!problem && timeout !== undefined && !(typeof timeout === "number" && timeout >= 0 && isFinite(timeout)))
        problem = "the timeout must be a finite number of milliseconds, 0 or more";
      if (problem) { reject(new VantuError("bad-argument", "vantu.invoke: " + problem, name)); return; }

      var timer = null;
      var settled = false;
      var entry = {
        bridge: name,
        invoke: true,
        onProgress: options == null ? undefined : options.onProgress,
        onAnswer: function (payload) { if (settle()) resolve(payload); },
        onFail: function (error) { if (settle()) reject(error); },
      };
      function settle() {
        if (settled) return false;
        settled = true;
        pending.delete(entry.id);
        if (timer !== null) root.clearTimeout(timer);
        return true;
      }
      var sent = send(name, data, entry);
      if (sent.problem) { reject(new VantuError(sent.problem, sent.message, name)); return; }
      if (timeout !== undefined && !settled) {
        timer = root.setTimeout(function () {
          entry.onFail(new VantuError("timeout", "vantu: \"" + name + "\" gave no answer within " + timeout + " ms", name));
        }, timeout);
      }
    });
  }

  // Native -> page: called by the container once per answer.
  function deliver(id, payload) {
    var entry = pending.get(id);
    if (!entry) return;
    try { entry.onAnswer(payload); } catch (e) { report(e); }
  }

  // Native -> page, batched: many answers, progress reports and events in
  // one evaluation, as an array of entries or as the JSON text of one.
  // Entries are [0, id, payload], [1, id, {received, total}] and
  // [2, name, detail]; see docs/page-protocol.md.
  var ANSWER = 0, PROGRESS = 1, EVENT = 2;
  var inbox = [];          // batches received but not yet handled
  var receiving = false;

  function receive(batch) {
    var entries = batch;
    if (typeof batch === "string") {
      try { entries = JSON.parse(batch); } catch (e) {
        report(new TypeError("vantu: a native batch was dropped: its text is not JSON (" + e.message + ")"));
        return;
      }
    }
    if (!Array.isArray(entries)) {
      report(new TypeError("vantu: a native batch was dropped: it is not an array of entries"));
      return;
    }
    // A batch received from inside a callback (a transport that answers at
    // once) waits for the one being handled, so entries keep their order.
    inbox.push(entries);
    if (receiving) return;
    receiving = true;
    try {
      for (var b = 0; b < inbox.length; b++) {
        for (var i = 0; i < inbox[b].length; i++) handleEntry(inbox[b][i], i);
      }
    } finally {
      inbox = [];
      receiving = false;
    }
  }

  function isCallId(id) { return Number.isSafeInteger(id) && id > 0; }
  function isByteCount(n) { return Number.isSafeInteger(n) && n >= 0; }

  // Returns why an entry cannot be handled, or null.
  function entryProblem(entry) {
    if (!Array.isArray(entry) || entry.length !== 3) return "an entry is an array of three elements";
    var kind = entry[0];
    if (kind === ANSWER || kind === PROGRESS) {
      if (!isCallId(entry[1])) return "the call id must be a positive integer";
      if (kind === PROGRESS) {
        var p = entry[2];
        if (p === null || typeof p !== "object" || !isByteCount(p.received) || !(p.total === null || isByteCount(p.total)))
          return "progress is {\"received\": bytes, \"total\": bytes or null}";
      }
      return null;
    }
    if (kind === EVENT) return typeof entry[1] === "string" && entry[1].length > 0 ? null : "the event name must be a non-empty string";
    return "the kind must be 0 (answer), 1 (progress) or 2 (event)";
  }

  function handleEntry(entry, position) {
    var problem = entryProblem(entry);
    if (problem) {
      report(new TypeError("vantu: entry " + position + " of a native batch was skipped: " + problem));
      return;
    }
    if (entry[0] === ANSWER) deliver(entry[1], entry[2]);
    else if (entry[0] === PROGRESS) progress(entry[1], entry[2]);
    else dispatch(entry[1], entry[2]);
  }

  // A call's progress goes to its listener while the call is known: an
  // invoke's until it settles, a call's for the life of the page.
  function progress(id, sofar) {
    var entry = pending.get(id);
    if (!entry || !entry.onProgress) return;
    try { entry.onProgress({ received: sofar.received, total: sofar.total }); } catch (e) { report(e); }
  }

  // Events, native -> page. name -> Map(listener -> registration); a
  // registration is live until it is removed, so that a dispatch in
  // progress skips listeners removed during it.
  var eventListeners = new Map();

  function listenerProblem(name, listener) {
    if (typeof name !== "string" || name.length === 0) return "the event name must be a non-empty string";
    if (typeof listener !== "function") return "the listener of \"" + name + "\" must be a function";
    return null;
  }

  function on(name, listener) {
    var problem = listenerProblem(name, listener);
    if (problem) throw new TypeError("vantu.on: " + problem);
    var registrations = eventListeners.get(name);
    if (!registrations) eventListeners.set(name, registrations = new Map());
    var registration = registrations.get(listener);
    if (!registration) registrations.set(listener, registration = { listener: listener, live: true });
    return function unsubscribe() { removeRegistration(name, registration); };
  }

  function off(name, listener) {
    var problem = listenerProblem(name, listener);
    if (problem) throw new TypeError("vantu.off: " + problem);
    var registrations = eventListeners.get(name);
    if (registrations && registrations.has(listener)) removeRegistration(name, registrations.get(listener));
  }

  function removeRegistration(name, registration) {
    if (!registration.live) return;
    var registrations = eventListeners.get(name);
    registration.live = false;
    registrations.delete(registration.listener);
    if (registrations.size === 0) eventListeners.delete(name);
  }

  // The listeners are those registered when the dispatch starts; one removed
  // during it is not called from then on.
  function dispatch(name, detail) {
    var registrations = eventListeners.get(name);
    if (!registrations) return;
    Array.from(registrations.values()).forEach(function (registration) {
      var listener = registration.listener;
      if (!registration.live) return;
      try { listener(detail); } catch (e) { report(e); }
    });
  }

  // A page that goes away can no longer be answered: its waiting promises
  // are rejected rather than left hanging. Callbacks of `call` are kept, as
  // a page restored from the back-forward cache may still be answered.
  function rejectWaiting() {
    Array.from(pending.values()).forEach(function (entry) {
      if (entry.invoke)
        entry.onFail(new VantuError("unload", "vantu: the page was unloaded before \"" + entry.bridge + "\" answered", entry.bridge));
    });
  }
  if (typeof root.addEventListener === "function") root.addEventListener("pagehide", rejectWaiting);

  var sdk = Object.freeze({
    __vantuSdk: true,
    version: VERSION,
    call: call,
    invoke: invoke,
    on: on,
    off: off,
    VantuError: VantuError,
    __deliver: deliver,
    __receive: receive,
  });
  try {
    Object.defineProperty(root, "vantu", { value: sdk, enumerable: true, writable: false, configurable: false });
  } catch (e) {
    root.vantu = sdk;  // a page's own non-configurable `vantu` global
  }
  // The root is found by these two names only: mock.mjs runs this file with
  // both bound to a private root of its own.
})(typeof window !== "undefined" ? window : globalThis);
