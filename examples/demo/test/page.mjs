// The demo's scripts in a page of their own, with just enough of a DOM for
// the demo's helpers, a clock that moves only when the test says so, and the
// SDK's mock as the container.
import { readFileSync } from "node:fs";
import vm from "node:vm";
import { installMock } from "../../../sdk/js/mock.mjs";

const source = (name) => readFileSync(new URL(`../${name}`, import.meta.url), "utf8");

export class FakeNode {
  constructor(tag) { this.tag = tag; this.children = []; this.attributes = {}; this.style = {}; this.className = ""; }
  append(...nodes) { this.children.push(...nodes); }
  prepend(...nodes) { this.children.unshift(...nodes); }
  appendChild(node) { this.children.push(node); return node; }
  replaceChildren(...nodes) { this.children = nodes; }
  setAttribute(key, value) { this.attributes[key] = value; }
  addEventListener() {}
  set innerHTML(html) { this.children = []; this.html = html; }
  get firstElementChild() { return this.children.find((c) => c instanceof FakeNode) ?? null; }
  get textContent() { return this.children.map((c) => (typeof c === "string" ? c : c.textContent)).join(" "); }
  set textContent(text) { this.children = [String(text)]; }
  // Depth first: every node below this one that `match` accepts.
  findAll(match) {
    return this.children.filter((c) => c instanceof FakeNode).flatMap((c) => [...(match(c) ? [c] : []), ...c.findAll(match)]);
  }
}

// Loads demo.js and the given scripts into a page opened with `search`
// ("?selftest=1" for the self-test's run). With `container`, the mock
// stands for the container and `register(mock)` sets its answers first.
export function openPage({ scripts = [], search = "", container = true, register = () => {} } = {}) {
  const timers = new Map();
  let now = 0, nextTimer = 1;
  const body = new FakeNode("body");
  const main = new FakeNode("main");
  body.append(main);
  const document = {
    title: "",
    body,
    createElement: (tag) => new FakeNode(tag),
    querySelector: (selector) => (selector === "main" ? main : null),
  };
  const context = vm.createContext({
    document, Node: FakeNode, URL, URLSearchParams,
    location: { href: `http://127.0.0.1:8000/index.html${search}`, search },
    setTimeout(fn, ms) { const id = nextTimer++; timers.set(id, { at: now + ms, fn }); return id; },
    clearTimeout(id) { timers.delete(id); },
  });
  context.window = context;
  const mock = container ? installMock({ global: context }) : null;
  if (mock) register(mock);
  for (const name of ["demo.js", ...scripts]) vm.runInContext(source(name), context);

  // Runs `promise` to its end: whenever the page waits for nothing but
  // time, the clock jumps to the next timer.
  async function settle(promise) {
    let done = false;
    promise.then(() => { done = true; }, () => { done = true; });
    for (;;) {
      if (mock) await mock.flush(); else await new Promise((resolve) => setImmediate(resolve));
      if (done) return promise;
      const [id, next] = [...timers].sort((a, b) => a[1].at - b[1].at)[0] ?? [];
      if (id === undefined) throw new Error("the page waits for something that never comes");
      timers.delete(id);
      now = next.at;
      next.fn();
    }
  }
  return { context, document, mock, Demo: context.Demo, settle, now: () => now };
}
