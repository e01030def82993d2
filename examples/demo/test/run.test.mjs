// Demo.run, the helper every page calls bridges with.
import { test } from "node:test";
import assert from "node:assert/strict";
import { openPage } from "./page.mjs";

test("run hands a download's progress to onProgress, then its outcome", async () => {
  const page = openPage({
    register: (mock) => mock.handle("vantuDownloadFile", async (data, call) => {
      call.progress(0);
      call.progress(512, 2048);
      call.progress(2048, 2048);
      return { data: { fileName: data.fileName, fileDownloadUrl: data.fileDownloadUrl, success: true, filePath: "/d/a.bin" } };
    }),
  });
  const seen = [];
  const outcome = await page.settle(page.Demo.run("vantuDownloadFile", { fileName: "a.bin", fileDownloadUrl: "u" },
    { timeout: 120000, onProgress: (p) => seen.push([p.received, p.total]) }));
  assert.deepEqual(seen, [[0, null], [512, 2048], [2048, 2048]]);
  assert.equal(outcome.kind, "ok");
  assert.equal(outcome.answer.data.filePath, "/d/a.bin");
});

test("run tells answers, refusals, unknown bridges and silence apart", async () => {
  const page = openPage({
    register: (mock) => mock.answer("vantuDeviceName", { data: "m" })
      .answer("vantuGetLocation", { error: 2, message: "User has not made a choice!" })
      .answers("vantuOpenGallery", []),
  });
  const kinds = [];
  for (const [bridge, options] of [["vantuDeviceName"], ["vantuGetLocation"], ["vantuPickFile"], ["vantuOpenGallery", { timeout: 2500 }]]) {
    const outcome = await page.settle(page.Demo.run(bridge, {}, options));
    kinds.push([bridge, outcome.kind, outcome.text]);
  }
  assert.deepEqual(kinds, [
    ["vantuDeviceName", "ok", "answered"],
    ["vantuGetLocation", "refused", "User has not made a choice!"],
    ["vantuPickFile", "unknown", "not in this container yet"],
    ["vantuOpenGallery", "silent", 'vantu: "vantuOpenGallery" gave no answer within 2500 ms'],
  ]);
});
