// The mock on globalThis, its default, with the SDK's module loaded after
// it as a page's code would.
import { test } from "node:test";
import assert from "node:assert/strict";
import { installMock } from "../mock.mjs";

test("the SDK's module keeps the mock installed before it", async () => {
  const mock = installMock();
  assert.equal(globalThis.vantu, mock.vantu);
  const sdk = await import("../index.mjs");
  assert.equal(sdk.default, mock.vantu);
  mock.answer("vantuDeviceManufacturer", { data: "Apple" });
  assert.deepEqual(await sdk.invoke("vantuDeviceManufacturer"), { data: "Apple" });
  const seen = [];
  sdk.on("windowFocus", (d) => seen.push(d.focused));
  mock.emit("windowFocus", { focused: true });
  mock.reset();
  mock.emit("windowFocus", { focused: false });
  assert.deepEqual(seen, [true], "reset removes listeners added through the module too");
  assert.ok((await sdk.invoke("x", []).catch((e) => e)) instanceof sdk.VantuError);
  assert.equal(installMock(), mock);
});
