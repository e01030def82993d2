import { test } from "node:test";
import assert from "node:assert/strict";

test("the module re-exports the injected SDK's functions", async () => {
  const posted = [];
  globalThis.CustomEvent = class { constructor(type, init) { Object.assign(this, { type, ...init, defaultPrevented: false }); } preventDefault() { this.defaultPrevented = true; } };
  globalThis.document = { dispatchEvent(e) { posted.push(JSON.parse(e.detail)); e.preventDefault(); return false; } };
  const sdk = await import("../index.mjs");
  assert.equal(sdk.default, globalThis.vantu);
  assert.equal(sdk.invoke, globalThis.vantu.invoke);
  assert.equal(sdk.call, globalThis.vantu.call);
  assert.equal(sdk.on, globalThis.vantu.on);
  assert.equal(sdk.off, globalThis.vantu.off);
  const answer = sdk.invoke("vantuDeviceManufacturer");
  globalThis.vantu.__deliver(posted[0].id, { data: "Apple" });
  assert.deepEqual(await answer, { data: "Apple" });
  assert.ok((await sdk.invoke("x", [], {}).catch((e) => e)) instanceof sdk.VantuError);
});
