// A fake page to run the SDK in: a document whose "vantu:post" events a
// fake native side takes (or not), a window with "pagehide", and a clock
// that only moves when a test says so.
import { readFileSync } from "node:fs";
import vm from "node:vm";

export const sdkSource = readFileSync(new URL("../vantu.js", import.meta.url), "utf8");

class FakeCustomEvent {
  constructor(type, init = {}) {
    this.type = type;
    this.detail = init.detail;
    this.cancelable = init.cancelable === true;
    this.defaultPrevented = false;
  }
  preventDefault() { if (this.cancelable) this.defaultPrevented = true; }
}

function listeners() {
  const byType = new Map();
  return {
    add(type, fn) { byType.set(type, [...(byType.get(type) ?? []), fn]); },
    fire(type, event) { for (const fn of byType.get(type) ?? []) fn(event); },
    count(type) { return (byType.get(type) ?? []).length; },
  };
}

export function makePage({ native = true } = {}) {
  const posted = [];
  const reported = [];
  const timers = new Map();
  let now = 0, nextTimer = 1;
  const docListeners = listeners();
  const winListeners = listeners();
  if (native) {
    docListeners.add("vantu:post", (event) => { posted.push(JSON.parse(event.detail)); event.preventDefault(); });
  }
  const context = vm.createContext({
    CustomEvent: FakeCustomEvent,
    document: {
      addEventListener: docListeners.add,
      dispatchEvent(event) { docListeners.fire(event.type, event); return !event.defaultPrevented; },
    },
    addEventListener: winListeners.add,
    setTimeout(fn, ms) { const id = nextTimer++; timers.set(id, { at: now + ms, fn }); return id; },
    clearTimeout(id) { timers.delete(id); },
    queueMicrotask,
    reportError(e) { reported.push(e); },
  });
  const page = {
    context, posted, reported, timers,
    load() { vm.runInContext(sdkSource, context); return context.vantu; },
    get vantu() { return context.vantu; },
    deliver(id, payload) { context.vantu.__deliver(id, payload); },
    receive(batch) { context.vantu.__receive(batch); },
    lastId() { return posted.at(-1).id; },
    hide() { winListeners.fire("pagehide", { persisted: false }); },
    pagehideListeners() { return winListeners.count("pagehide"); },
    tick(ms) {
      now += ms;
      for (const [id, t] of [...timers].sort((a, b) => a[1].at - b[1].at)) {
        if (t.at <= now && timers.delete(id)) t.fn();
      }
    },
  };
  page.load();
  return page;
}

// Lets queued microtasks and promise reactions run.
export const settle = () => new Promise((resolve) => setImmediate(resolve));

// Values parsed in the page's realm, as plain values of this one.
export const plain = (value) => JSON.parse(JSON.stringify(value));
