// Events from the native side: vantu.on / vantu.off and [2, name, detail]
// entries of vantu.__receive.
import { test } from "node:test";
import assert from "node:assert/strict";
import { makePage, plain } from "./page.mjs";

const event = (name, detail) => [2, name, detail];

test("listeners get the details of their event, in batch order with answers", () => {
  const page = makePage();
  const seen = [];
  page.vantu.on("networkChanged", (d) => seen.push(["net", d.type]));
  page.vantu.on("windowFocus", (d) => seen.push(["focus", d.focused]));
  page.vantu.on("hostSignedIn", (d) => seen.push(["host", d]));
  const id = page.vantu.call("b", {}, (a) => seen.push(["answer", a]));
  page.receive([event("networkChanged", { type: "Wifi" }), [0, id, 1], event("windowFocus", { focused: false }),
    event("containerHidden", null), event("hostSignedIn", { user: "u" }), event("networkChanged", { type: "No Connection" })]);
  page.receive(JSON.stringify([event("windowFocus", { focused: true })]));
  assert.deepEqual(plain(seen), [["net", "Wifi"], ["answer", 1], ["focus", false], ["host", { user: "u" }],
    ["net", "No Connection"], ["focus", true]]);
  assert.deepEqual(page.reported, []);
});

test("unsubscribing stops delivery, by the returned function or by off", () => {
  const page = makePage();
  const seen = [];
  const byFunction = (d) => seen.push(["function", d]);
  const byOff = (d) => seen.push(["off", d]);
  const stays = (d) => seen.push(["stays", d]);
  const unsubscribe = page.vantu.on("e", byFunction);
  page.vantu.on("e", byOff);
  page.vantu.on("e", stays);
  page.receive([event("e", 1)]);
  unsubscribe();
  page.vantu.off("e", byOff);
  page.receive([event("e", 2)]);
  unsubscribe();
  page.vantu.off("e", byOff);
  page.vantu.off("never-added", stays);
  page.receive([event("e", 3)]);
  assert.deepEqual(seen, [["function", 1], ["off", 1], ["stays", 1], ["stays", 2], ["stays", 3]]);
});

test("a listener added twice is called once and removed by one removal", () => {
  const page = makePage();
  let calls = 0;
  const listener = () => calls++;
  const first = page.vantu.on("e", listener);
  const second = page.vantu.on("e", listener);
  page.receive([event("e", null)]);
  assert.equal(calls, 1);
  second();
  page.receive([event("e", null)]);
  assert.equal(calls, 1, "either unsubscribe function removes it");

  const again = page.vantu.on("e", listener);
  first();
  page.receive([event("e", null)]);
  assert.equal(calls, 2, "an old unsubscribe function does not remove a later registration");
  again();
  page.receive([event("e", null)]);
  assert.equal(calls, 2);

  const other = () => calls++;
  page.vantu.on("e", other);
  page.vantu.on("f", other);
  page.vantu.off("e", other);
  page.receive([event("e", null), event("f", null)]);
  assert.equal(calls, 3, "registrations are per name");
});

test("changes made during a dispatch follow the snapshot taken when it starts", () => {
  const page = makePage();
  const seen = [];
  const late = () => seen.push("late");
  const removed = () => seen.push("removed");
  const readded = () => seen.push("readded");
  page.vantu.on("e", (d) => {
    seen.push("first");
    if (d !== 1) return;
    page.vantu.on("e", late);          // joins from the next event on
    page.vantu.off("e", removed);      // not called from now on
    page.vantu.off("e", readded);
    page.vantu.on("e", readded);       // a new registration: next event
  });
  page.vantu.on("e", removed);
  page.vantu.on("e", readded);
  const self = page.vantu.on("e", () => { seen.push("self"); self(); });
  page.receive([event("e", 1)]);
  assert.deepEqual(seen, ["first", "self"]);
  seen.length = 0;
  page.receive([event("e", 2)]);
  assert.deepEqual(seen, ["first", "late", "readded"]);
});

test("an event nobody listens to is dropped, not kept for later listeners", () => {
  const page = makePage();
  const seen = [];
  page.receive([event("networkChanged", { type: "4G" })]);
  page.vantu.on("networkChanged", (d) => seen.push(d.type));
  page.receive([event("networkChanged", { type: "Wifi" })]);
  assert.deepEqual(seen, ["Wifi"]);
});

test("a listener that throws does not stop the others nor the batch", () => {
  const page = makePage();
  const seen = [];
  page.vantu.on("e", (d) => { throw new Error(`listener bug ${d}`); });
  page.vantu.on("e", (d) => seen.push(d));
  page.receive([event("e", 1), event("e", 2)]);
  assert.deepEqual(seen, [1, 2]);
  assert.deepEqual(page.reported.map((e) => e.message), ["listener bug 1", "listener bug 2"]);
});

test("listeners stay after pagehide, for a page restored from the cache", () => {
  const page = makePage();
  const seen = [];
  page.vantu.on("containerShown", (d) => seen.push(d));
  page.hide();
  page.receive([event("containerShown", null)]);
  assert.deepEqual(seen, [null]);
});

test("bad names and listeners are refused", () => {
  const page = makePage();
  const cases = [["", () => {}], [undefined, () => {}], [7, () => {}], ["e"], ["e", "not a function"], ["e", {}]];
  for (const args of cases) {
    assert.throws(() => page.vantu.on(...args), { name: "TypeError", message: /^vantu\.on: / }, String(args));
    assert.throws(() => page.vantu.off(...args), { name: "TypeError", message: /^vantu\.off: / }, String(args));
  }
});
