// The mock page authors test their pages with (vantu-h5-sdk/mock).
import { test } from "node:test";
import assert from "node:assert/strict";
import { installMock } from "../mock.mjs";

// A global of its own for each test, with a clock that moves when told.
function fresh() {
  const timers = new Map();
  let now = 0, next = 1;
  const target = {
    setTimeout(fn, ms) { const id = next++; timers.set(id, { at: now + ms, fn }); return id; },
    clearTimeout(id) { timers.delete(id); },
  };
  const tick = (ms) => {
    now += ms;
    for (const [id, t] of [...timers].sort((a, b) => a[1].at - b[1].at)) if (t.at <= now && timers.delete(id)) t.fn();
  };
  const mock = installMock({ global: target });
  return { mock, vantu: target.vantu, target, timers, tick };
}

async function rejection(promise) {
  try { await promise; } catch (e) { return e; }
  assert.fail("the promise was resolved");
}

test("registered answers: a value, a list, a function, a promise", async () => {
  const { mock, vantu } = fresh();
  const token = { token: "t" };
  mock.answer("vantuNetworkType", { data: "Wifi" })
    .answers("vantuFetchAuthToken", [token, { success: true, data: token }])
    .answers("pushWindow", [])
    .answer("vantuFetchCustomerId", ["an", "array", "is", "one", "answer"])
    .handle("vantuGetData", (data) => ({ data: Object.fromEntries(data.keys.map((k) => [k, `value of ${k}`])) }))
    .handle("vantuGetLocation", async () => ({ success: true, data: { lat: "1", long: "2" } }))
    .handle("showAlert", () => undefined);
  assert.deepEqual(await vantu.invoke("vantuNetworkType"), { data: "Wifi" });
  const tokens = [];
  vantu.call("vantuFetchAuthToken", {}, (a) => tokens.push(a));
  const pushes = [];
  vantu.call("pushWindow", { url: "/next", params: {} }, (a) => pushes.push(a));
  assert.deepEqual(await vantu.invoke("vantuFetchCustomerId"), ["an", "array", "is", "one", "answer"]);
  assert.deepEqual(await vantu.invoke("vantuGetData", { keys: ["a", "b"] }), { data: { a: "value of a", b: "value of b" } });
  assert.deepEqual(await vantu.invoke("vantuGetLocation"), { success: true, data: { lat: "1", long: "2" } });
  const alert = vantu.invoke("showAlert", { message: "m", type: "normal" }, { timeout: 50 });
  await mock.flush();
  assert.deepEqual(tokens, [token, { success: true, data: token }]);
  assert.notEqual(tokens[0], token, "the page gets a copy, as from a container");
  assert.deepEqual(pushes, []);
  mock.callsTo("showAlert")[0].answer({ data: { success: true } });
  assert.deepEqual(await alert, { data: { success: true } });
});

test("a bridge with nothing registered is an unknown bridge", async () => {
  const { vantu } = fresh();
  assert.deepEqual(await vantu.invoke("vantuDeviceName"), { error: 2, message: "Unknown bridge: vantuDeviceName" });
  assert.deepEqual(await vantu.invoke("hostOwnBridge", { x: 1 }), { error: 2, message: "Unknown bridge: hostOwnBridge" });
});

test("answers come after the call returns, never during it", async () => {
  const { mock, vantu } = fresh();
  mock.answer("b", 1).handle("c", (data, call) => { call.answer(2); call.answer(3); });
  const seen = [];
  vantu.call("b", {}, (a) => seen.push(a));
  vantu.call("c", {}, (a) => seen.push(a));
  assert.deepEqual(seen, []);
  await mock.flush();
  assert.deepEqual(seen, [1, 2, 3]);
});

test("calls are listed in the order made, with their data and answers", async () => {
  const { mock, vantu } = fresh();
  mock.answer("vantuSaveData", { data: {} });
  vantu.call("vantuSaveData", { data: { a: 1 } });
  await vantu.invoke("vantuDeviceData");
  vantu.call("vantuSaveData", { data: { b: 2 } }, () => {});
  await mock.flush();
  assert.deepEqual(mock.calls.map((c) => [c.bridge, c.data]),
    [["vantuSaveData", { data: { a: 1 } }], ["vantuDeviceData", {}], ["vantuSaveData", { data: { b: 2 } }]]);
  const ids = mock.calls.map((c) => c.id);
  assert.deepEqual([...ids].sort((a, b) => a - b), ids, "ids grow with time");
  assert.deepEqual(mock.callsTo("vantuSaveData").map((c) => c.data), [{ data: { a: 1 } }, { data: { b: 2 } }]);
  assert.deepEqual(mock.callsTo("vantuDeviceData")[0].answers, [{ error: 2, message: "Unknown bridge: vantuDeviceData" }]);
  assert.deepEqual(mock.callsTo("nothing"), []);
});

test("progress and late answers, from a handler or from the test", async () => {
  const { mock, vantu } = fresh();
  mock.handle("vantuDownloadFile", async (data, call) => {
    call.progress(0);
    call.progress(512, 1024);
    return undefined;  // the test answers later
  });
  const seen = [];
  const saved = vantu.invoke("vantuDownloadFile", { fileName: "f", fileDownloadUrl: "u" }, { onProgress: (p) => seen.push(p) });
  await mock.flush();
  const [download] = mock.callsTo("vantuDownloadFile");
  download.progress(1024, 1024);
  download.answer({ data: { fileName: "f", fileDownloadUrl: "u", success: true, filePath: "/d/f" } });
  download.progress(2048, 1024);
  assert.equal((await saved).data.filePath, "/d/f");
  assert.deepEqual(seen, [{ received: 0, total: null }, { received: 512, total: 1024 }, { received: 1024, total: 1024 }]);
  for (const bad of [[-1], [1.5], ["1"], [1, "2"], [1, -2]]) assert.throws(() => download.progress(...bad), TypeError, String(bad));
});

test("events reach the page's listeners", () => {
  const { mock, vantu } = fresh();
  const seen = [];
  const stop = vantu.on("networkChanged", (d) => seen.push(d));
  vantu.on("containerShown", (d) => seen.push(d));
  mock.emit("networkChanged", { type: "4G" });
  mock.emit("containerShown");
  stop();
  mock.emit("networkChanged", { type: "Wifi" });
  assert.deepEqual(seen, [{ type: "4G" }, null]);
  assert.throws(() => mock.emit(""), TypeError);
});

test("the SDK's own rules hold: timeouts on the global's clock, unload, bad arguments", async () => {
  const { mock, vantu, tick, timers } = fresh();
  mock.handle("vantuOpenGallery", () => undefined);
  const silent = vantu.invoke("vantuOpenGallery", {}, { timeout: 2500 });
  await mock.flush();
  assert.equal(timers.size, 1, "the timeout is on the global's clock");
  tick(2500);
  assert.equal((await rejection(silent)).code, "timeout");

  mock.handle("vantuGetLocation", () => undefined);
  const waiting = vantu.invoke("vantuGetLocation");
  mock.hidePage();
  const unloaded = await rejection(waiting);
  assert.equal(unloaded.code, "unload");
  assert.ok(unloaded instanceof vantu.VantuError);

  assert.equal((await rejection(vantu.invoke("vantuGetData", []))).code, "bad-argument");
  assert.throws(() => vantu.call(""), TypeError);
  assert.equal(mock.calls.length, 2, "refused calls are not made");
});

test("exceptions of the page and of handlers are collected", async () => {
  const { mock, vantu } = fresh();
  mock.answer("b", 1).handle("broken", () => { throw new Error("handler bug"); });
  vantu.call("b", {}, () => { throw new Error("page bug"); });
  vantu.on("e", () => { throw new Error("listener bug"); });
  const broken = [];
  vantu.call("broken", {}, (a) => broken.push(a));
  mock.emit("e");
  await mock.flush();
  assert.deepEqual(mock.errors.map((e) => e.message).sort(), ["handler bug", "listener bug", "page bug"]);
  assert.deepEqual(broken, [], "a failed handler answers nothing");
});

test("the global's reportError hears the exceptions too", async () => {
  const reported = [];
  const target = { reportError: (e) => reported.push(e.message) };
  const mock = installMock({ global: target });
  target.vantu.on("e", () => { throw new Error("listener bug"); });
  mock.emit("e");
  assert.deepEqual(reported, ["listener bug"]);
});

test("answers that are not JSON values are refused", async () => {
  const { mock, vantu } = fresh();
  assert.throws(() => mock.answer("b", undefined), /must be a JSON value/);
  assert.throws(() => mock.answers("b", { 0: 1 }), /must be an array/);
  assert.throws(() => mock.handle("b", 5), /must be a function/);
  assert.throws(() => mock.answer("", 1), /non-empty string/);
  assert.throws(() => mock.emit("e", { n: 1n }), /cannot be sent as JSON/);
  mock.handle("b", (data, call) => { call.answer(undefined); });
  mock.answer("c", { n: 1n });
  vantu.call("b");
  vantu.call("c");
  await mock.flush();
  const [b, c] = mock.errors.map((e) => e.message);
  assert.equal(b, 'vantu mock: an answer to "b" must be a JSON value, not undefined');
  assert.match(c, /^vantu mock: the answer to "c" cannot be sent as JSON: /);
  assert.equal(mock.errors.length, 2);
});

test("reset forgets answers, calls, errors and listeners; the vantu stays", async () => {
  const { mock, vantu } = fresh();
  mock.answer("b", "before").handle("slow", () => new Promise((resolve) => setTimeout(() => resolve("too late"), 5)));
  const seen = [];
  vantu.on("e", (d) => seen.push(["listener", d]));
  vantu.call("slow", {}, (a) => seen.push(["slow", a]));
  const pending = vantu.call("b", {}, (a) => seen.push(["b", a]));
  vantu.on("e", () => { throw new Error("bug"); });
  mock.emit("e", 1);
  mock.reset();
  assert.deepEqual([mock.calls, mock.errors], [[], []]);
  await new Promise((resolve) => setTimeout(resolve, 10));
  await mock.flush();
  mock.emit("e", 2);
  assert.deepEqual(seen, [["listener", 1]], "answers due before the reset and old listeners are gone");
  assert.deepEqual(await vantu.invoke("b"), { error: 2, message: "Unknown bridge: b" });
  assert.ok(pending > 0);
  vantu.on("e", (d) => seen.push(["new listener", d]));
  mock.emit("e", 3);
  assert.deepEqual(seen.at(-1), ["new listener", 3]);
});

test("installing: once per global, never over another vantu, and undone by uninstall", () => {
  const target = {};
  const mock = installMock({ global: target });
  assert.equal(installMock({ global: target }), mock);
  assert.equal(target.vantu, mock.vantu);
  assert.ok(Object.isFrozen(target.vantu));
  assert.equal(target.vantu.__vantuSdk, true, "the SDK script leaves it in place");
  assert.throws(() => { "use strict"; target.vantu = {}; }, TypeError);
  mock.uninstall();
  assert.equal(target.vantu, undefined);
  assert.notEqual(installMock({ global: target }), mock);
  assert.throws(() => installMock({ global: { vantu: { call() {} } } }), /has a vantu already/);
  assert.throws(() => installMock({ global: 5 }), TypeError);
});
