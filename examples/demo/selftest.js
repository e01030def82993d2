// The demo's self-test: index.html?selftest=1 calls bridges of every family,
// records each outcome, and ends by setting the document title to
// "vantu-selftest:done", or "vantu-selftest:failed: REASON" for a real fault
// (no SDK, a call that never answered where an answer is due, a wrong answer).
(function () {
  "use strict";
  const { h, fill, chip, verdict, here, sdk, isObject } = window.Demo;

  const DUE = 20000;       // ms; an answer is due well within this
  const NETWORK = 30000;   // ms; HTTP and downloads from this demo's own server
  const USER = 2500;       // ms; calls that may wait for the user

  const SAMPLE_NAME = "vantu demo sample";

  // Each family: calls in order. A call says whether an answer is due and
  // may check a successful answer (returning a fault text or nothing).
  const families = [
    ["Device info", async (t) => {
      await t.call("vantuDeviceData", {}, {
        check: (a) => ["name", "manufacturer", "os_version", "imei", "locale", "network_type"]
          .filter((k) => typeof a.data?.[k] !== "string").map((k) => `"${k}" is not text`)[0],
      });
      await t.call("vantuNetworkType", {}, { check: (a) => (typeof a.data === "string" ? null : "no network type") });
      await t.call("vantuGetAppInfo");
    }],
    ["Host app", async (t) => {
      // Answered by the host's delegate (in `vantu-h5 run`, the device
      // profile's "delegates"); refused when the container has none.
      const flag = (a) => (a.data?.success === true ? null : "did not answer {data: {success: true}}");
      await t.call("vantuFetchCustomerId", {}, {
        check: (a) => (typeof a === "string" || typeof a?.data === "string" ? null : "no customer id"),
      });
      await t.call("vantuLogin", { reason: "self-test" }, { check: flag });
      await t.call("vantuFetchAuthToken", {}, { check: (a) => (isObject(a) ? null : "no token object") });
      await t.call("vantuFetchValuesForKeys", { keys: ["theme", "currency"] });
      await t.call("vantuFetchParamsAgainstKey", { key: "campaign" });
      await t.call("vantuNavigateTo", { navigateTo: "orders", data: { from: "self-test" } });
      await t.call("vantuOpenDeeplink", { deeplink: "demo://orders/42" }, { check: flag });
      await t.call("vantuHandleSessionExpiry", {}, { check: flag });
      await t.call("vantuLogout", {}, { check: flag });
    }],
    ["Storage", async (t) => {
      const key = "selftest-note";
      const note = { text: "written by the self-test", at: Date.now() };
      const saved = await t.call("vantuSaveData", { data: { [key]: note } });
      const read = await t.call("vantuGetData", { keys: [key] }, {
        check: (a) => (saved.kind === "ok" && JSON.stringify(a.data?.[key]) !== JSON.stringify(note)
          ? "read back something else than was saved" : null),
      });
      await t.call("vantuRemoveData", { keys: [key] });
      if (read.kind === "ok") {
        await t.call("vantuGetData", { keys: [key] }, {
          label: "vantuGetData (after remove)",
          check: (a) => (a.data?.[key] === "" ? null : "the removed key still reads a value"),
        });
      }
    }],
    ["HTTP", async (t) => {
      await t.call("httpRequest", { url: here("data/sample.json"), method: "GET", timeout: 15000 }, {
        timeout: NETWORK,
        check: (a) => {
          if (a.status !== 200) return null;  // a server's own answer, not a fault of the bridge
          try { return JSON.parse(a.data).name === SAMPLE_NAME ? null : "the body is not the sample file"; }
          catch (e) { return "the body is not JSON"; }
        },
      });
      await t.call("httpRequest", { url: here("data/sample.json") }, {
        label: "httpRequest (no method)",
        check: () => "a request without a method was accepted",
      });
    }],
    ["Downloads", async (t) => {
      const fileName = `selftest-${Date.now()}.txt`;
      const got = await t.call("vantuDownloadFile", { fileName, fileDownloadUrl: here("data/sample.txt") }, {
        timeout: NETWORK,
        check: (a) => (a.data?.filePath ? null : "no file path for a finished download"),
      });
      const path = await t.call("vantuGetFilePath", { fileName }, {
        check: (a) => (got.kind === "ok" && a.data?.filePath !== got.answer.data.filePath
          ? "the path differs from the download's" : null),
      });
      if (got.kind === "ok" && path.kind === "refused") t.fault(path, "a downloaded file was not found");
      await t.call("vantuRemoveFile", { fileName });
    }],
    ["Permissions", async (t) => {
      await t.call("vantuCheckPermission", { permission: "camera, photos,location" }, {
        check: (a) => Object.values(a.data || {}).some((s) => ![1, 0, -1].includes(s)) ? "a status outside 1, 0, -1" : null,
      });
      await t.call("vantuCheckPermission", { permission: "teleport" }, {
        label: "vantuCheckPermission (unknown word)",
        check: () => "an unknown permission word was accepted",
      });
    }],
    ["Owner authentication", async (t) => {
      await t.call("vantuAuthenticateOnDevice", { authenticationReason: "The demo's self-test asks who you are." },
        { due: false, timeout: USER });
    }],
    ["Pickers", async (t) => {
      await t.call("vantuOpenGallery", {}, { due: false, timeout: USER });
    }],
    ["Location", async (t) => {
      await t.call("vantuGetLocation");
      await t.call("vantuGetAddress", { latitude: "12.97", longitude: 77.59 }, {
        label: "vantuGetAddress (latitude as text)",
        check: () => "a latitude given as text was accepted",
      });
    }],
    ["Alerts and share", async (t) => {
      // Real alerts wait for a tap; these calls are refused before any UI.
      await t.call("showAlert", { type: "normal" }, {
        label: "showAlert (no message)", check: () => "an alert without a message was shown",
      });
      await t.call("vantuShareTextAndImage", {}, {
        label: "vantuShareTextAndImage (nothing)", check: () => "an empty share was accepted",
      });
    }],
    ["Bars and push-window", async (t) => {
      await t.call("vantuChangeStatusBarColor", { color: "#4F46E5" }, { check: (a) => (a === true ? null : "did not answer true") });
      await t.call("vantuResetStatusBarBackgroundColor", {}, { check: (a) => (a === true ? null : "did not answer true") });
      await t.call("vantuShowTitleBar", { value: "yes" }, {
        label: "vantuShowTitleBar (value as text)", check: () => "a title-bar value given as text was accepted",
      });
      await t.call("vantuChangeWebSetting", {}, { check: (a) => (a === true ? null : "did not answer true") });
      await t.call("pushWindow", { params: {} }, {
        label: "pushWindow (no url)", check: () => "a push without a url gave an answer other than a refusal",
      });
    }],
  ];

  const LABELS = { ok: "ok", refused: "refused", unknown: "unknown bridge", silent: "no answer", waiting: "running", fault: "FAULT" };

  function renderRow(list, row) {
    row.el = row.el || list.appendChild(h("li"));
    fill(row.el,
      h("div", { class: "line" }, h("span", { class: "call" }, row.label), chip(row.kind, LABELS[row.kind])),
      h("div", { class: "family" }, row.family),
      row.text ? h("div", { class: "detail" }, row.text) : null);
  }

  async function runSelfTest(root) {
    const list = h("ul", { class: "results" });
    const summary = h("div", { class: "summary" });
    root.replaceChildren(summary, list);
    const rows = [];
    window.vantuSelftest = { rows, finished: false };
    if (!sdk) {
      summary.append(chip("fault", "the SDK is missing"));
      document.title = "vantu-selftest:failed: SDK missing (window.vantu is not defined)";
      return;
    }

    for (const [family, steps] of families) {
      const t = {
        async call(bridge, data, { due = true, timeout = DUE, check, label } = {}) {
          const row = { family, label: label || bridge, kind: "waiting", text: "" };
          rows.push(row);
          renderRow(list, row);
          try {
            row.answer = await sdk.invoke(bridge, data, { timeout });
            const v = verdict(bridge, row.answer);
            row.kind = v.kind;
            row.text = v.kind === "ok" ? JSON.stringify(row.answer).slice(0, 120) : v.text;
            const problem = v.kind === "ok" && check ? check(row.answer) : null;
            if (problem) t.fault(row, problem);
          } catch (error) {
            if (error.code === "timeout" && !due) {
              row.kind = "silent";
              row.text = "no answer yet: waits for the user (expected)";
            } else {
              t.fault(row, error.code === "timeout" ? `never answered within ${timeout} ms` : error.message);
            }
          }
          renderRow(list, row);
          return row;
        },
        fault(row, text) {
          row.kind = "fault";
          row.text = text;
          renderRow(list, row);
        },
      };
      await steps(t);
    }

    const count = (kind) => rows.filter((r) => r.kind === kind).length;
    for (const kind of ["ok", "refused", "unknown", "silent", "fault"]) {
      const n = count(kind);
      if (n) summary.append(chip(kind, `${n} ${{ ok: "answered", refused: "refused", unknown: "unknown bridge",
        silent: "waiting for a user", fault: n > 1 ? "faults" : "fault" }[kind]}`));
    }
    window.vantuSelftest.finished = true;
    const fault = rows.find((r) => r.kind === "fault");
    document.title = fault ? `vantu-selftest:failed: ${fault.label}: ${fault.text}` : "vantu-selftest:done";
  }

  window.Demo.runSelfTest = runSelfTest;
})();
