// vantu.__receive: batches of answers, progress reports and events from the
// native side, as an array or as its JSON text.
import { test } from "node:test";
import assert from "node:assert/strict";
import { makePage, plain } from "./page.mjs";

// The two forms a native side may send the same batch in.
const forms = [["array", (entries) => entries], ["JSON text", (entries) => JSON.stringify(entries)]];

test("answers in a batch reach their calls in order, in either form", () => {
  for (const [form, encode] of forms) {
    const page = makePage();
    const seen = [];
    const a = page.vantu.call("vantuFetchAuthToken", {}, (x) => seen.push(["a", x]));
    const b = page.vantu.call("showAlert", { message: "m", type: "normal" }, (x) => seen.push(["b", x]));
    page.receive(encode([[0, b, { data: { success: true } }], [0, a, { token: "t" }], [0, a, { success: true }], [0, b, "again"]]));
    assert.deepEqual(plain(seen), [["b", { data: { success: true } }], ["a", { token: "t" }], ["a", { success: true }], ["b", "again"]], form);
    assert.deepEqual(page.reported, [], form);
  }
});

test("an answer entry means what __deliver means", async () => {
  const page = makePage();
  const first = page.vantu.invoke("vantuFetchAuthToken", {}, { timeout: 1000 });
  const id = page.lastId();
  page.receive([[0, id, { token: "first" }], [0, id, { success: true }], [0, 99, "nobody asked"]]);
  assert.deepEqual(await first, { token: "first" });
  assert.equal(page.timers.size, 0, "the timeout is cleared");
  assert.deepEqual(page.reported, [], "unknown ids are not faults");

  const seen = [];
  const callId = page.vantu.call("b", {}, (x) => seen.push(x));
  page.deliver(callId, 1);
  page.receive([[0, callId, 2]]);
  page.deliver(callId, 3);
  assert.deepEqual(seen, [1, 2, 3], "both entry points may be used side by side");
});

test("text is parsed as JSON, never run as script", () => {
  const page = makePage();
  const seen = [];
  const id = page.vantu.call("b", {}, (x) => seen.push(x));
  page.receive(`[[0, ${id}, {"text": "line\u2028sep", "code": "globalThis.hacked = 1"}]]`);
  page.receive(`[[0, ${id}, "(function () { globalThis.hacked = 2; })()"]]`);
  assert.deepEqual(plain(seen), [{ text: "line\u2028sep", code: "globalThis.hacked = 1" }, "(function () { globalThis.hacked = 2; })()"]);
  assert.equal(page.context.hacked, undefined);
});

test("a batch that is not an array of entries is dropped and reported", () => {
  const page = makePage();
  const seen = [];
  const id = page.vantu.call("b", {}, (x) => seen.push(x));
  const bad = ["not json", `[[0, ${id}, 1]`, "", `{"0": [0, ${id}, 1]}`, "null", `${id}`, { 0: [0, id, 1], length: 1 }, null, undefined, 7];
  for (const batch of bad) page.receive(batch);
  assert.deepEqual(seen, []);
  assert.equal(page.reported.length, bad.length);
  for (const e of page.reported) assert.match(e.message, /^vantu: a native batch was dropped: /);
});

test("a malformed entry is skipped and reported; the rest of the batch is handled", () => {
  // [entry, what its report says]
  const malformed = [
    [null, /array of three/], [{ kind: 0 }, /array of three/], [[0, 1], /array of three/], [[0, 1, {}, 4], /array of three/],
    [[3, 1, {}], /the kind must be/], [["0", 1, {}], /the kind must be/], [[-1, 1, {}], /the kind must be/],
    [[0, 0, {}], /call id/], [[0, "1", {}], /call id/], [[0, 1.5, {}], /call id/], [[0, null, {}], /call id/],
    [[1, 1, null], /progress is/], [[1, 1, { received: 1 }], /progress is/], [[1, 1, { received: -1, total: null }], /progress is/],
    [[1, 1, { received: 1, total: "2" }], /progress is/], [[1, 1, { received: 0.5, total: 1 }], /progress is/],
    [[1, "1", { received: 1, total: 2 }], /call id/],
    [[2, "", null], /event name/], [[2, 5, null], /event name/], [[2, null, null], /event name/],
  ];
  for (const [form, encode] of forms) {
    const page = makePage();
    const seen = [];
    const id = page.vantu.call("b", {}, (x) => seen.push(x));
    const batch = malformed.flatMap(([entry], n) => [[0, id, n], entry]);
    page.receive(encode(batch));
    assert.deepEqual(seen, malformed.map((_, n) => n), form);
    assert.equal(page.reported.length, malformed.length, form);
    malformed.forEach(([entry, reason], n) => {
      const message = page.reported[n].message;
      assert.match(message, new RegExp(`^vantu: entry ${2 * n + 1} of a native batch was skipped: `), `${form} ${JSON.stringify(entry)}`);
      assert.match(message, reason, `${form} ${JSON.stringify(entry)}`);
    });
  }
});

test("a callback that throws does not stop the rest of the batch", () => {
  const page = makePage();
  const seen = [];
  const thrower = page.vantu.call("b", {}, (x) => { seen.push(["thrower", x]); throw new Error(`bug ${x}`); });
  const other = page.vantu.call("c", {}, (x) => seen.push(["other", x]));
  page.receive([[0, thrower, 1], [0, other, 2], [0, thrower, 3], [0, other, 4]]);
  assert.deepEqual(seen, [["thrower", 1], ["other", 2], ["thrower", 3], ["other", 4]]);
  assert.deepEqual(page.reported.map((e) => e.message), ["bug 1", "bug 3"]);
});

test("a batch received from inside a callback waits for the one being handled", () => {
  const page = makePage();
  const seen = [];
  const other = page.vantu.call("c", {}, (x) => seen.push(x));
  const nesting = page.vantu.call("b", {}, (x) => {
    seen.push(x);
    if (x === "a1") page.receive([[0, other, "b1"], [0, other, "b2"]]);
  });
  page.receive([[0, nesting, "a1"], [0, other, "a2"]]);
  assert.deepEqual(seen, ["a1", "a2", "b1", "b2"]);
  page.receive([[0, other, "later"]]);
  assert.deepEqual(seen.at(-1), "later", "the next batch is handled at once");
});
