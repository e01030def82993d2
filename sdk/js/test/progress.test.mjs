// Progress of a call's transfer: [1, id, {received, total}] entries of
// vantu.__receive reach the onProgress option of invoke and call.
import { test } from "node:test";
import assert from "node:assert/strict";
import { makePage, plain } from "./page.mjs";

const progress = (id, received, total) => [1, id, { received, total }];
const download = { fileName: "a.bin", fileDownloadUrl: "https://example.test/a.bin" };

async function rejection(promise) {
  try { await promise; } catch (e) { return e; }
  assert.fail("the promise was resolved");
}

test("invoke reports progress until it settles", async () => {
  const page = makePage();
  const seen = [];
  const done = page.vantu.invoke("vantuDownloadFile", download, { timeout: 60000, onProgress: (p) => seen.push(p) });
  const id = page.lastId();
  const other = page.vantu.invoke("vantuDownloadFile", download, { onProgress: () => seen.push("other call") });
  page.receive([progress(id, 0, null), progress(id, 4096, null)]);
  page.receive(JSON.stringify([progress(id, 8192, 30000), [1, id, { received: 30000, total: 30000, extra: 1 }],
    [0, id, { data: { success: true } }], progress(id, 30001, 30000)]));
  page.receive([progress(id, 30002, 30000)]);
  assert.deepEqual(plain(seen), [{ received: 0, total: null }, { received: 4096, total: null },
    { received: 8192, total: 30000 }, { received: 30000, total: 30000 }]);
  assert.deepEqual(plain(await done), { data: { success: true } });
  void other;
});

test("an invoke that timed out or was unloaded reports no more progress", async () => {
  const page = makePage();
  const seen = [];
  const timedOut = page.vantu.invoke("vantuDownloadFile", download, { timeout: 100, onProgress: (p) => seen.push(["t", p.received]) });
  const t = page.lastId();
  const unloaded = page.vantu.invoke("vantuDownloadFile", download, { onProgress: (p) => seen.push(["u", p.received]) });
  const u = page.lastId();
  page.receive([progress(t, 1, null), progress(u, 1, null)]);
  page.tick(100);
  page.receive([progress(t, 2, null), progress(u, 2, null)]);
  page.hide();
  page.receive([progress(t, 3, null), progress(u, 3, null)]);
  assert.deepEqual(seen, [["t", 1], ["u", 1], ["u", 2]]);
  assert.equal((await rejection(timedOut)).code, "timeout");
  assert.equal((await rejection(unloaded)).code, "unload");
});

test("call reports progress for as long as its answers may come", () => {
  const page = makePage();
  const seen = [];
  const id = page.vantu.call("hostTransfer", {}, (a) => seen.push(["answer", a]), { onProgress: (p) => seen.push(["progress", p.received, p.total]) });
  assert.equal(id, page.lastId());
  page.receive([progress(id, 10, 100), [0, id, "first"], progress(id, 100, 100), [0, id, "last"]]);
  page.hide();
  page.receive([progress(id, 5, null)]);
  assert.deepEqual(plain(seen), [["progress", 10, 100], ["answer", "first"], ["progress", 100, 100], ["answer", "last"],
    ["progress", 5, null]]);
});

test("progress without a listener, or for an unknown call, is ignored", async () => {
  const page = makePage();
  const answers = [];
  const id = page.vantu.call("vantuDownloadFile", download, (a) => answers.push(a));
  const plainInvoke = page.vantu.invoke("vantuDownloadFile", download);
  const invokeId = page.lastId();
  page.receive([progress(id, 1, 2), progress(invokeId, 1, 2), progress(999, 1, 2), [0, id, "done"], [0, invokeId, "done"]]);
  assert.deepEqual(answers, ["done"]);
  assert.equal(await plainInvoke, "done");
  assert.deepEqual(page.reported, []);
});

test("a progress listener that throws does not stop the answer", async () => {
  const page = makePage();
  const done = page.vantu.invoke("vantuDownloadFile", download, { onProgress: (p) => { throw new Error(`at ${p.received}`); } });
  const id = page.lastId();
  page.receive([progress(id, 1, null), progress(id, 2, null), [0, id, "saved"]]);
  assert.equal(await done, "saved");
  assert.deepEqual(page.reported.map((e) => e.message), ["at 1", "at 2"]);
});

test("a progress listener that is not a function is refused", async () => {
  const page = makePage();
  for (const options of [{ onProgress: "no" }, { onProgress: {} }, { onProgress: null }, 5, "options"]) {
    assert.throws(() => page.vantu.call("b", {}, () => {}, options), { name: "TypeError", message: /^vantu\.call: / }, String(options));
    assert.equal((await rejection(page.vantu.invoke("b", {}, options))).code, "bad-argument", String(options));
  }
  assert.deepEqual(page.posted, []);
  assert.doesNotThrow(() => page.vantu.call("b", {}, undefined, { onProgress: () => {} }));
  assert.doesNotThrow(() => page.vantu.call("b", {}, () => {}, null));
});
