// Compiled with tsc --noEmit: typed uses of the SDK must compile, and each
// line marked @ts-expect-error must be refused (tsc fails if one is not).
import sdk, { invoke as invokeFromModule, on as onFromModule, type Answer, type Events } from "../../index.mjs";

// A page's own event, added to the map by declaration merging.
declare global {
  namespace VantuH5 {
    interface Events { signedIn: { user: string } }
  }
}

async function typedUses(): Promise<void> {
  const got = await vantu.invoke("vantuGetData", { keys: ["note"] }, { timeout: 5000 });
  if ("data" in got) { const note: unknown = got.data["note"]; void note; } else { const m: string = got.message; void m; }

  const device = await window.vantu.invoke("vantuDeviceData");
  if ("data" in device) { const os: string = device.data.os_version; void os; }

  const http = await invokeFromModule("httpRequest", { url: "/data/sample.json", method: "GET", timeout: 1500 });
  if ("status" in http) { const s: number = http.status; const body: string = http.data; void s; void body; }
  else if ("invalid url" in http) { const code: 2 = http["invalid url"]; void code; }

  const bar = await sdk.invoke("vantuShowTitleBar", { value: false });
  if (bar === true) { /* the bare boolean */ } else { const m: string = bar.message; void m; }

  const perms = await vantu.invoke("vantuCheckPermission", { permission: "camera,location" });
  if ("success" in perms) { const camera = perms.data["camera"]; const s: 1 | 0 | -1 | undefined = camera; void s; }

  const net: Answer<"vantuNetworkType"> = { data: 'Unknown Technology: "NR"' };
  void net;

  vantu.call("showAlert", { message: "Saved", type: "custom", buttons: ["OK", "Undo"] }, (a) => {
    if ("data" in a) { const ok: true = a.data.success; void ok; }
  });
  vantu.call("vantuFetchCustomerId");
  vantu.call("pushWindow", { url: "/next.html", params: {} });
  vantu.call("hostOwnBridge", { anything: 1 }, (answer: unknown) => void answer);
  await vantu.invoke("vantuAuthenticateOnDevice", {}).then((a) => {
    if (!("message" in a) && !a.data.success) { const c: 0 | 1 | 2 = a.data.error.code; void c; }
  });
  try { await vantu.invoke("vantuGetLocation", {}, { timeout: 1 }); }
  catch (e) { if (e instanceof vantu.VantuError) { const why: "no-native" | "timeout" | "unload" | "bad-argument" = e.code; void why; } }
}

function typedEvents(): void {
  const stop: () => void = vantu.on("networkChanged", (d) => { const t: VantuH5.NetworkType = d.type; void t; });
  stop();
  vantu.on("containerShown", (d) => { const none: null = d; void none; });
  window.vantu.on("windowFocus", (d) => { const f: boolean = d.focused; void f; });
  onFromModule("signedIn", (d) => { const u: string = d.user; void u; });
  vantu.on("hostOwnEvent", (d) => { const any: unknown = d; void any; });
  const focus = (d: Events["windowFocus"]) => void d;
  vantu.on("windowFocus", focus);
  vantu.off("windowFocus", focus);
  sdk.off("hostOwnEvent", (d: unknown) => void d);
}

async function typedProgress(): Promise<void> {
  const bar = (p: VantuH5.Progress) => { const fraction = p.total === null ? null : p.received / p.total; void fraction; };
  const saved = await vantu.invoke("vantuDownloadFile", { fileName: "a.bin", fileDownloadUrl: "https://a.example/a.bin" },
    { timeout: 60000, onProgress: bar });
  if ("data" in saved) { const path: string = saved.data.filePath; void path; }
  vantu.call("vantuDownloadFile", { fileName: "a.bin", fileDownloadUrl: "https://a.example/a.bin" }, undefined, { onProgress: bar });
  vantu.call("hostTransfer", {}, (a: unknown) => void a, { onProgress: ({ received }) => void received });
}

function refusedUses(): void {
  // @ts-expect-error total may be null
  vantu.invoke("vantuDownloadFile", { fileName: "a", fileDownloadUrl: "u" }, { onProgress: (p) => p.total.toFixed() });
  // @ts-expect-error onProgress takes a function
  vantu.call("vantuDownloadFile", { fileName: "a", fileDownloadUrl: "u" }, undefined, { onProgress: true });
  // @ts-expect-error the detail of a network change is not a string
  vantu.on("networkChanged", (d: string) => void d);
  // @ts-expect-error the detail of a host's own event is unknown, not any
  vantu.on("hostOwnEvent", (d) => d.length);
  // @ts-expect-error a merged event keeps its declared detail
  vantu.on("signedIn", (d) => { const n: number = d.user; void n;  });
  // @ts-expect-error windowFocus carries "focused"
  vantu.on("windowFocus", (d) => d.visible);
  // @ts-expect-error a listener is required
  vantu.on("containerHidden");
  // @ts-expect-error keys is required
  vantu.invoke("vantuGetData", {});
  // @ts-expect-error keys must be strings
  vantu.invoke("vantuGetData", { keys: [1] });
  // @ts-expect-error the arguments of a known bridge cannot be left out
  vantu.invoke("httpRequest");
  // @ts-expect-error value must be a boolean
  vantu.call("vantuShowTitleBar", { value: "no" });
  // @ts-expect-error a push needs params or param
  vantu.call("vantuPushWindow", { url: "https://a.example/", appId: "a" });
  // @ts-expect-error the timeout is a number
  vantu.invoke("vantuDeviceData", {}, { timeout: "5s" });
  // @ts-expect-error the answer of a bar bridge is not an object with data
  const wrong: Answer<"vantuShowTitleBar"> = { data: true };
  void wrong;
  // @ts-expect-error the SDK cannot be replaced
  window.vantu = sdk;
}

void typedUses; void typedEvents; void typedProgress; void refusedUses;
