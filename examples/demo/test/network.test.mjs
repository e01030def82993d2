// The network indicator in every demo page's header.
import { test } from "node:test";
import assert from "node:assert/strict";
import { openPage } from "./page.mjs";

const indicator = (page) => page.document.body.findAll((n) => n.className.split(" ").includes("net"))[0];

test("the indicator shows the network asked for on load, then follows changes", async () => {
  const page = openPage({ register: (mock) => mock.answer("vantuNetworkType", { data: "Wifi" }) });
  page.Demo.frame({ icon: "device", title: "Device info", text: "t" });
  const net = indicator(page);
  await page.mock.flush();
  assert.deepEqual([net.textContent.trim(), net.className], ["Wifi", "net online"]);
  page.mock.emit("networkChanged", { type: "No Connection" });
  assert.deepEqual([net.textContent.trim(), net.className], ["No Connection", "net offline"]);
  page.mock.emit("networkChanged", { type: 'Unknown Technology: "NR"' });
  assert.deepEqual([net.textContent.trim(), net.className], ['Unknown Technology: "NR"', "net"]);
  assert.deepEqual(page.mock.calls.map((c) => c.bridge), ["vantuNetworkType"]);
});

test("a change that comes before the first answer wins over it", async () => {
  const page = openPage({ register: (mock) => mock.handle("vantuNetworkType", () => undefined) });
  const net = page.Demo.networkIndicator();
  await page.mock.flush();
  assert.equal(net.textContent.trim(), "network…");
  page.mock.emit("networkChanged", { type: "4G" });
  page.mock.callsTo("vantuNetworkType")[0].answer({ data: "Wifi" });
  await page.mock.flush();
  assert.equal(net.textContent.trim(), "4G");
});

test("a container without the bridge or without an answer is said so", async () => {
  const unknown = openPage();
  const net = unknown.Demo.networkIndicator();
  await unknown.mock.flush();
  assert.equal(net.textContent.trim(), "network: not in this container yet");

  const silent = openPage({ register: (mock) => mock.answers("vantuNetworkType", []) });
  const quiet = silent.Demo.networkIndicator();
  await silent.settle(silent.mock.flush().then(() => new Promise((resolve) => silent.context.setTimeout(resolve, 20000))));
  assert.equal(quiet.textContent.trim(), "network: no answer");
});

test("the self-test's run asks nothing of its own, but still follows changes", async () => {
  const page = openPage({ search: "?selftest=1" });
  page.Demo.frame({ icon: "home", title: "vantu-h5 demo", text: "t", back: false });
  const net = indicator(page);
  await page.mock.flush();
  assert.deepEqual(page.mock.calls, []);
  page.mock.emit("networkChanged", { type: "Wifi" });
  assert.equal(net.textContent.trim(), "Wifi");
});

test("outside a container the indicator says so", () => {
  const page = openPage({ container: false });
  assert.equal(page.Demo.networkIndicator().textContent.trim(), "no container");
});
