// Compiled with tsc --noEmit: typed uses of the mock must compile, and each
// line marked @ts-expect-error must be refused.
import { installMock, type MockCall, type VantuMock } from "../../mock.mjs";

async function typedMock(): Promise<void> {
  const mock: VantuMock = installMock({ global: globalThis });
  mock.answer("vantuNetworkType", { data: "Wifi" })
    .answer("vantuShowTitleBar", true)
    .answer("vantuGetData", { error: 2, message: "refused" })
    .answers("vantuFetchAuthToken", [{ token: "t" }, { success: true, data: { token: "t" } }])
    .answer("hostOwnBridge", [1, 2, 3]);
  mock.handle("vantuGetData", (data) => ({ data: Object.fromEntries(data.keys.map((k) => [k, ""])) }));
  mock.handle("vantuDownloadFile", async (data, call) => {
    call.progress(0);
    call.progress(10, 20);
    return { data: { fileName: data.fileName, fileDownloadUrl: data.fileDownloadUrl, success: true, filePath: "/d" } };
  });
  mock.handle("hostOwnBridge", (data) => data["anything"]);
  mock.emit("networkChanged", { type: "4G" });
  mock.emit("containerHidden");
  mock.emit("windowFocus", { focused: true });
  mock.emit("hostOwnEvent", { any: "thing" });
  const downloads: MockCall<"vantuDownloadFile">[] = mock.callsTo("vantuDownloadFile");
  const name: string | undefined = downloads[0]?.data.fileName;
  void name;
  const bridges: string[] = mock.calls.map((c) => c.bridge);
  void bridges;
  await mock.flush();
  mock.hidePage();
  mock.reset();
  mock.uninstall();
  const errors: readonly unknown[] = mock.errors;
  void errors;
  const answered = await mock.vantu.invoke("vantuNetworkType");
  void answered;
}

function refusedMock(mock: VantuMock): void {
  // @ts-expect-error the network type answer wraps its text in data
  mock.answer("vantuNetworkType", "Wifi");
  // @ts-expect-error a bar bridge answers true, not an object with data
  mock.answers("vantuShowTitleBar", [{ data: true }]);
  // @ts-expect-error keys are strings: the handler's data is typed
  mock.handle("vantuGetData", (data) => ({ data: { n: data.keys[0] * 2 } }));
  // @ts-expect-error windowFocus needs its detail
  mock.emit("windowFocus");
  // @ts-expect-error networkChanged carries {type}
  mock.emit("networkChanged", { network: "4G" });
  // @ts-expect-error progress counts are numbers
  mock.callsTo("vantuDownloadFile")[0]?.progress("10");
}

void typedMock; void refusedMock;
