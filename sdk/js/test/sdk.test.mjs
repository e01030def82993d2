import { test } from "node:test";
import assert from "node:assert/strict";
import vm from "node:vm";
import { makePage, settle, sdkSource } from "./page.mjs";

// Errors come from the page's realm, so they are matched by their fields.
async function rejection(promise) {
  try { await promise; } catch (e) { return e; }
  assert.fail("the promise was resolved");
}

test("each call posts {id, bridge, data} with a fresh positive id", () => {
  const page = makePage();
  page.vantu.call("vantuDeviceData");
  page.vantu.invoke("vantuGetData", { keys: ["a"] });
  page.vantu.call("vantuSaveData", { data: { n: 1 } }, () => {});
  assert.deepEqual(page.posted.map(({ bridge, data }) => ({ bridge, data })), [
    { bridge: "vantuDeviceData", data: {} },
    { bridge: "vantuGetData", data: { keys: ["a"] } },
    { bridge: "vantuSaveData", data: { data: { n: 1 } } },
  ]);
  const ids = page.posted.map((m) => m.id);
  assert.ok(ids.every((id) => Number.isInteger(id) && id > 0));
  assert.equal(new Set(ids).size, ids.length);
});

test("call hands every answer to its callback, as sent, for the life of the page", () => {
  const page = makePage();
  const answers = [];
  const id = page.vantu.call("vantuFetchAuthToken", {}, (a) => answers.push(a));
  assert.equal(id, page.lastId());
  assert.deepEqual(answers, [], "no answer yet");
  const token = { token: "t" };
  page.deliver(id, token);
  page.deliver(id, { success: true, data: token });
  page.tick(10 * 60 * 1000);
  page.hide();
  page.deliver(id, true);
  page.deliver(id, null);
  assert.equal(answers[0], token, "the payload object itself");
  assert.deepEqual(answers.slice(1), [{ success: true, data: token }, true, null]);
});

test("invoke resolves with the first answer and forgets the call", async () => {
  const page = makePage();
  const p = page.vantu.invoke("vantuFetchAuthToken", {}, { timeout: 1000 });
  const id = page.lastId();
  page.deliver(id, { token: "first" });
  page.deliver(id, { success: true });
  assert.deepEqual(await p, { token: "first" });
  assert.equal(page.timers.size, 0, "the timeout is cleared");
  page.tick(5000);
  page.hide();
  assert.deepEqual(await p, { token: "first" });
});

test("invoke rejects after its timeout, and drops answers that come later", async () => {
  const page = makePage();
  const p = page.vantu.invoke("showAlert", { message: "m", type: "normal" }, { timeout: 500 });
  page.tick(499);
  page.deliver(page.lastId() + 1, "not this call");
  page.tick(1);
  page.deliver(page.lastId(), { data: { success: true } });
  const e = await rejection(p);
  assert.equal(e.name, "VantuError");
  assert.equal(e.code, "timeout");
  assert.equal(e.bridge, "showAlert");
  assert.match(e.message, /"showAlert" gave no answer within 500 ms/);
  const zero = page.vantu.invoke("vantuDeviceData", {}, { timeout: 0 });
  page.tick(0);
  assert.equal((await rejection(zero)).code, "timeout");
});

test("leaving the page rejects waiting invokes but keeps callbacks of calls", async () => {
  const page = makePage();
  const waiting = [page.vantu.invoke("vantuGetLocation"), page.vantu.invoke("vantuPickFile", {}, { timeout: 9e9 })];
  const answers = [];
  const callId = page.vantu.call("showAlert", { message: "m", type: "normal" }, (a) => answers.push(a));
  page.hide();
  for (const p of waiting) {
    const e = await rejection(p);
    assert.equal(e.code, "unload");
    assert.match(e.message, /unloaded before "vantu(GetLocation|PickFile)" answered/);
  }
  assert.equal(page.timers.size, 0);
  page.deliver(callId, { data: { success: true } });
  assert.deepEqual(answers, [{ data: { success: true } }]);
  const after = page.vantu.invoke("vantuDeviceData");
  page.deliver(page.lastId(), { data: {} });
  assert.deepEqual(await after, { data: {} }, "a page shown again can call");
});

test("answers for unknown ids are ignored", () => {
  const page = makePage();
  for (const id of [0, -1, 1, 99, "1", null, undefined, 1.5]) page.deliver(id, { data: 1 });
  assert.deepEqual(page.reported, []);
});

test("without a native side calls fail at once and clearly", async () => {
  const page = makePage({ native: false });
  const answers = [];
  assert.equal(page.vantu.call("vantuDeviceData", {}, (a) => answers.push(a)), 0);
  assert.deepEqual(answers, [], "never before call returns");
  await settle();
  assert.equal(answers.length, 1);
  assert.equal(answers[0].error, 2);
  assert.match(answers[0].message, /"vantuDeviceData".*not running inside a vantu-h5 container/);
  const e = await rejection(page.vantu.invoke("vantuGetData", { keys: ["k"] }, { timeout: 100 }));
  assert.equal(e.code, "no-native");
  assert.equal(page.timers.size, 0);
  assert.doesNotThrow(() => page.vantu.call("vantuDeviceData"));
});

test("a page without a document or events cannot post", async () => {
  for (const strip of [["document"], ["CustomEvent"]]) {
    const page = makePage();
    for (const key of strip) delete page.context[key];
    const e = await rejection(page.vantu.invoke("vantuDeviceData"));
    assert.equal(e.code, "no-native", strip.join());
  }
});

test("bad arguments are refused before anything is posted", async () => {
  const page = makePage();
  const callCases = [[""], [42], ["b", []], ["b", "text"], ["b", 7], ["b", {}, "not a function"]];
  for (const args of callCases) assert.throws(() => page.vantu.call(...args), { name: "TypeError" }, JSON.stringify(args));
  const cyclic = {}; cyclic.self = cyclic;
  assert.throws(() => page.vantu.call("b", cyclic), /cannot be sent as JSON/);
  const invokeCases = [[undefined], ["b", [1]], ["b", {}, { timeout: -1 }], ["b", {}, { timeout: "5" }],
    ["b", {}, { timeout: Infinity }], ["b", {}, 5], ["b", cyclic]];
  for (const args of invokeCases) {
    assert.equal((await rejection(page.vantu.invoke(...args))).code, "bad-argument", String(args));
  }
  assert.deepEqual(page.posted, []);
  assert.equal(page.timers.size, 0);
});

test("a callback that throws does not stop later answers", () => {
  const page = makePage();
  const seen = [];
  const id = page.vantu.call("b", {}, (a) => { seen.push(a); throw new Error("page bug"); });
  page.deliver(id, 1);
  page.deliver(id, 2);
  assert.deepEqual(seen, [1, 2]);
  assert.deepEqual(page.reported.map((e) => e.message), ["page bug", "page bug"]);
});

test("a transport that answers before post returns still settles once", async () => {
  const page = makePage({ native: false });
  page.context.document.dispatchEvent = (event) => {
    event.preventDefault();
    page.deliver(JSON.parse(event.detail).id, "at once");
    return !event.defaultPrevented;
  };
  assert.equal(await page.vantu.invoke("b", {}, { timeout: 10 }), "at once");
  assert.equal(page.timers.size, 0);
});

test("loading the SDK again keeps the same object and its calls", () => {
  const page = makePage();
  const first = page.vantu;
  const answers = [];
  const id = first.call("b", {}, (a) => answers.push(a));
  vm.runInContext(sdkSource, page.context);
  assert.equal(page.vantu, first);
  assert.equal(page.pagehideListeners(), 1);
  page.deliver(id, "still here");
  assert.deepEqual(answers, ["still here"]);
  assert.ok(first.call("b") > id, "ids keep counting");
  assert.throws(() => { "use strict"; page.context.vantu = {}; }, TypeError);
  assert.ok(Object.isFrozen(first));
});
