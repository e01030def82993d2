// The demo's self-test against the SDK's mock: which outcomes end in
// "vantu-selftest:done" and which in a failure title.
import { test } from "node:test";
import assert from "node:assert/strict";
import { FakeNode, openPage } from "./page.mjs";

// `register(mock)` sets the container's answers.
async function runSelfTest(register, { container = true } = {}) {
  const page = openPage({ scripts: ["selftest.js"], search: "?selftest=1", container, register });
  const root = new FakeNode("div");
  await page.settle(page.Demo.runSelfTest(root));
  const rows = page.context.vantuSelftest.rows;
  return { title: page.document.title, rows, text: root.textContent, calls: page.mock?.calls, seconds: page.now() / 1000 };
}

const sample = JSON.stringify({ name: "vantu demo sample" });
const refused = { error: 2, message: "refused as it should be" };

// A container whose every bridge behaves: storage remembers, refusals refuse,
// the owner authentication and the photo picker wait for a person.
function goodContainer(mock) {
  const store = new Map();
  mock.answer("vantuDeviceData", { data: { name: "m", manufacturer: "Apple", os_version: "1", imei: "", locale: "en", network_type: "Wifi" } })
    .answer("vantuNetworkType", { data: "Wifi" })
    .answer("vantuGetAppInfo", { appVersion: "1.0", h5Version: "1.0.0" })
    .answer("vantuFetchCustomerId", "c-42")
    .answer("vantuLogin", { data: { success: true } })
    .answer("vantuFetchAuthToken", { accessToken: "t" })
    .answer("vantuFetchValuesForKeys", { success: true, data: { theme: "light" } })
    .answer("vantuFetchParamsAgainstKey", { success: true, data: ["spring-sale"] })
    .answer("vantuNavigateTo", { success: true, data: null })
    .answer("vantuOpenDeeplink", { data: { success: true } })
    .answer("vantuHandleSessionExpiry", { data: { success: true } })
    .answer("vantuLogout", { data: { success: true } })
    .handle("vantuSaveData", (data) => { for (const [k, v] of Object.entries(data.data)) store.set(k, v); return { data: {} }; })
    .handle("vantuGetData", (data) => ({ data: Object.fromEntries(data.keys.map((k) => [k, store.get(k) ?? ""])) }))
    .handle("vantuRemoveData", (data) => { data.keys.forEach((k) => store.delete(k)); return { data: {} }; })
    .handle("httpRequest", (data) => (data.method ? { status: 200, headers: {}, data: sample, headersStr: "{}" } : { "invalid method": 2 }))
    .handle("vantuDownloadFile", (data, call) => {
      call.progress(0, null);
      call.progress(24, 48);
      return { data: { fileName: data.fileName, fileDownloadUrl: data.fileDownloadUrl, success: true, filePath: `/d/${data.fileName}` } };
    })
    .handle("vantuGetFilePath", (data) => ({ data: { success: true, filePath: `/d/${data.fileName}` } }))
    .answer("vantuRemoveFile", { data: { success: true } })
    .handle("vantuCheckPermission", (data) => (data.permission === "teleport" ? refused : { success: true, data: { camera: 1, photos: 0, location: -1 } }))
    .answers("vantuAuthenticateOnDevice", [])
    .answers("vantuOpenGallery", [])
    .answer("vantuGetLocation", { success: true, data: { lat: "12.97", long: "77.59" } });
  for (const bridge of ["vantuChangeStatusBarColor", "vantuResetStatusBarBackgroundColor", "vantuChangeWebSetting"]) mock.answer(bridge, true);
  for (const bridge of ["vantuGetAddress", "showAlert", "vantuShareTextAndImage", "vantuShowTitleBar", "pushWindow"]) mock.answer(bridge, refused);
}

test("a container that answers as it should passes, users' waits included", async () => {
  const { title, rows, calls, seconds } = await runSelfTest(goodContainer);
  assert.equal(title, "vantu-selftest:done");
  assert.deepEqual([...rows.filter((r) => r.kind === "silent").map((r) => r.label)], ["vantuAuthenticateOnDevice", "vantuOpenGallery"]);
  assert.equal(seconds, 5, "each wait for a person is given 2.5 s");
  assert.ok(rows.length >= 20);
  assert.deepEqual(calls.map((c) => c.bridge), [...rows.map((r) => r.label.split(" ")[0])], "one call per row, nothing else");
});

test("bridges not built yet are recorded, not faults", async () => {
  const { title, rows } = await runSelfTest(() => {});
  assert.equal(title, "vantu-selftest:done");
  assert.ok(rows.every((r) => r.kind === "unknown"));
});

test("real faults fail the run with the call that showed them", async () => {
  // [what, how the container goes wrong, the title expected]
  const cases = [
    ["never answers", (mock) => mock.answers("vantuGetLocation", []), "vantuGetLocation: never answered within 20000 ms"],
    ["storage forgets", (mock) => mock.answer("vantuGetData", { data: { "selftest-note": "" } }),
      "vantuGetData: read back something else than was saved"],
    ["wrong HTTP body", (mock) => mock.answer("httpRequest", { status: 200, data: "{}" }), "httpRequest: the body is not the sample file"],
    ["download without a path", (mock) => mock.answer("vantuDownloadFile", { data: { success: true, filePath: "" } }),
      "vantuDownloadFile: no file path for a finished download"],
    ["login not confirmed", (mock) => mock.answer("vantuLogin", { data: {} }),
      "vantuLogin: did not answer {data: {success: true}}"],
    ["no token", (mock) => mock.answer("vantuFetchAuthToken", "t"), "vantuFetchAuthToken: no token object"],
    ["bad argument accepted", (mock) => mock.answer("vantuShowTitleBar", true),
      "vantuShowTitleBar (value as text): a title-bar value given as text was accepted"],
    ["page unloaded", (mock) => mock.handle("vantuNetworkType", () => { mock.hidePage(); }),
      'vantuNetworkType: vantu: the page was unloaded before "vantuNetworkType" answered'],
  ];
  for (const [what, breakIt, expected] of cases) {
    const { title, text } = await runSelfTest((mock) => { goodContainer(mock); breakIt(mock); });
    assert.equal(title, `vantu-selftest:failed: ${expected}`, what);
    assert.match(text, /FAULT/, what);
  }
});

test("without the SDK the run fails at once", async () => {
  const { title } = await runSelfTest(() => {}, { container: false });
  assert.equal(title, "vantu-selftest:failed: SDK missing (window.vantu is not defined)");
});
