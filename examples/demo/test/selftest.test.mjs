// The demo's self-test against a scripted SDK: which outcomes end in
// "vantu-selftest:done" and which in a failure title.
import { test } from "node:test";
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import vm from "node:vm";

const source = (name) => readFileSync(new URL(`../${name}`, import.meta.url), "utf8");

// Just enough of a DOM for the demo's helpers to build their lists.
class FakeNode {
  constructor(tag) { this.tag = tag; this.children = []; this.attributes = {}; }
  append(...nodes) { this.children.push(...nodes); }
  appendChild(node) { this.children.push(node); return node; }
  replaceChildren(...nodes) { this.children = nodes; }
  setAttribute(key, value) { this.attributes[key] = value; }
  addEventListener() {}
  get textContent() { return this.children.map((c) => (typeof c === "string" ? c : c.textContent)).join(" "); }
}

// `answers(bridge, data)` gives the answer, or throws {code} to reject.
async function runSelfTest(answers, { withSdk = true } = {}) {
  const document = { title: "", createElement: (tag) => new FakeNode(tag) };
  const sdk = {
    __vantuSdk: true,
    async invoke(bridge, data, options) { return answers(bridge, data, options); },
  };
  const context = vm.createContext({ document, Node: FakeNode, URL, location: { href: "http://127.0.0.1:8000/index.html" } });
  context.window = context;
  if (withSdk) context.vantu = sdk;
  vm.runInContext(source("demo.js"), context);
  vm.runInContext(source("selftest.js"), context);
  const root = new FakeNode("div");
  await context.Demo.runSelfTest(root);
  return { title: document.title, rows: context.vantuSelftest.rows, text: root.textContent };
}

const timeout = () => { throw Object.assign(new Error("gave no answer"), { code: "timeout" }); };
const sample = JSON.stringify({ name: "vantu demo sample" });

// A container whose every bridge behaves: storage remembers, refusals refuse.
function goodContainer() {
  const store = new Map();
  const refused = { error: 2, message: "refused as it should be" };
  return (bridge, data) => {
    switch (bridge) {
      case "vantuDeviceData": return { data: { name: "m", manufacturer: "Apple", os_version: "1", imei: "", locale: "en", network_type: "Wifi" } };
      case "vantuNetworkType": return { data: "Wifi" };
      case "vantuSaveData": for (const [k, v] of Object.entries(data.data)) store.set(k, v); return { data: {} };
      case "vantuGetData": return { data: Object.fromEntries(data.keys.map((k) => [k, store.get(k) ?? ""])) };
      case "vantuRemoveData": data.keys.forEach((k) => store.delete(k)); return { data: {} };
      case "httpRequest": return data.method ? { status: 200, headers: {}, data: sample, headersStr: "{}" } : { "invalid method": 2 };
      case "vantuDownloadFile": return { data: { success: true, filePath: `/d/${data.fileName}` } };
      case "vantuGetFilePath": return { data: { success: true, filePath: `/d/${data.fileName}` } };
      case "vantuCheckPermission": return data.permission === "teleport" ? refused : { success: true, data: { camera: 1, photos: 0, location: -1 } };
      case "vantuAuthenticateOnDevice": case "vantuOpenGallery": return timeout();
      case "vantuChangeStatusBarColor": case "vantuResetStatusBarBackgroundColor": case "vantuChangeWebSetting": return true;
      case "vantuGetAddress": case "showAlert": case "vantuShareTextAndImage": case "vantuShowTitleBar": case "pushWindow": return refused;
      default: return { data: {} };
    }
  };
}

test("a container that answers as it should passes, users' waits included", async () => {
  const { title, rows } = await runSelfTest(goodContainer());
  assert.equal(title, "vantu-selftest:done");
  assert.deepEqual([...rows.filter((r) => r.kind === "silent").map((r) => r.label)], ["vantuAuthenticateOnDevice", "vantuOpenGallery"]);
  assert.ok(rows.length >= 20);
});

test("bridges not built yet are recorded, not faults", async () => {
  const { title, rows } = await runSelfTest((bridge) => ({ error: 2, message: `Unknown bridge: ${bridge}` }));
  assert.equal(title, "vantu-selftest:done");
  assert.ok(rows.every((r) => r.kind === "unknown"));
});

test("real faults fail the run with the call that showed them", async () => {
  const unloaded = () => { throw Object.assign(new Error("unloaded"), { code: "unload" }); };
  // [what, bridge, its wrong behaviour, the title expected]
  const cases = [
    ["never answers", "vantuGetLocation", timeout, "vantuGetLocation: never answered within 20000 ms"],
    ["storage forgets", "vantuGetData", () => ({ data: { "selftest-note": "" } }),
      "vantuGetData: read back something else than was saved"],
    ["wrong HTTP body", "httpRequest", () => ({ status: 200, data: "{}" }), "httpRequest: the body is not the sample file"],
    ["bad argument accepted", "vantuShowTitleBar", () => true,
      "vantuShowTitleBar (value as text): a title-bar value given as text was accepted"],
    ["page unloaded", "vantuNetworkType", unloaded, "vantuNetworkType: unloaded"],
  ];
  for (const [what, broken, behaviour, expected] of cases) {
    const good = goodContainer();
    const { title, text } = await runSelfTest((b, d) => (b === broken ? behaviour(b, d) : good(b, d)));
    assert.equal(title, `vantu-selftest:failed: ${expected}`, what);
    assert.match(text, /FAULT/, what);
  }
});

test("without the SDK the run fails at once", async () => {
  const { title } = await runSelfTest(() => assert.fail("nothing may be called"), { withSdk: false });
  assert.equal(title, "vantu-selftest:failed: SDK missing (window.vantu is not defined)");
});
