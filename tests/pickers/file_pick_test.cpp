// "vantuPickFile": whole-call failures, the per-file verdicts in order,
// the read limit, and file URLs.

#include <gmock/gmock.h>

#include "tests/pickers/picker_test_fixture.h"
#include "vantu/pickers/file_picker_handler.h"
#include "vantu/pickers/picker_error.h"

namespace vantu::testing_support {
namespace {

using ::testing::ElementsAre;
constexpr std::string_view kPickFile = "vantuPickFile";

TEST_F(PickerTest, FilePickWholeCallFailures) {
  EXPECT_THAT(send(kPickFile, "{}", ""), ElementsAre(flatError(FilePickerHandler::kNoViewController)));

  EXPECT_TRUE(send(kPickFile, R"({"maxNumberOfFiles": 2})", "page").empty());
  EXPECT_THAT(send(kPickFile, "{}", "other"), ElementsAre(flatError("File picker is busy!")));
  pickDocuments("page", {fileUrl("README"), fileUrl("report.PDF"), fileUrl("notes.txt")});
  EXPECT_THAT(collect().answers, ElementsAre(flatError(FilePickerHandler::kTooManyFiles)));

  EXPECT_TRUE(send(kPickFile, R"({"maxNumberOfFiles": 2})", "page").empty());
  auto picker = device.pickers().shownDocumentPickers().at(0);
  device.pickers().answer(picker, {sim::SimPickers::Action::cancel, {}});
  settle();
  auto outcome = collect();
  EXPECT_THAT(outcome.answers, ElementsAre(flatError("User cancelled the file pick operation!")));
  EXPECT_THAT(outcome.effects, ::testing::Contains(::testing::HasSubstr(R"("effect":"dismiss")")));
}

TEST_F(PickerTest, FilePickEntriesInPickerOrderWithEveryVerdict) {
  EXPECT_TRUE(send(kPickFile, R"({"extensionsAllowed": ["pdf", "readme", "txt"], "maxLengthPerFile": 10})", "page").empty());
  // One file is picked twice; a URL that is not a file's cannot be coordinated.
  pickDocuments("page", {fileUrl("report.PDF"), fileUrl("README"), fileUrl("empty.txt"), fileUrl("photo.png"),
                         fileUrl("gone.txt"), "https://example.com/a.pdf", fileUrl("report.PDF")});
  EXPECT_THAT(collect().answers,
              ElementsAre(json::write(dataOf(R"({"data": [
      {"meta": {"fileName": "report.PDF", "fileSize": 10, "fileType": "PDF"}, "base64": "aGVsbG8gcGRmCg=="},
      {"meta": {"fileName": "README", "fileSize": 7, "fileType": "README"}, "base64": "cmVhZCBtZQ=="},
      {"error": "FilePickerHandler: Invalid file size : <= 0"},
      {"error": "FilePickerHandler: Extension of the processed file is not present in the allowed extensions!"},
      {"error": "Failed to read meta data"},
      {"error": "Failed to coordinate reading of the file"},
      {"meta": {"fileName": "report.PDF", "fileSize": 10, "fileType": "PDF"}, "base64": "aGVsbG8gcGRmCg=="}]})"))));
}

// Released before the pick, or after it while the files wait for the queue.
TEST_F(PickerTest, FilePickHandlerReleasedBeforeTheAnswerAnswersNothing) {
  for (bool releaseAfterPick : {false, true}) {
    auto handler = std::make_shared<FilePickerHandler>();
    int answers = 0;
    handler->handleWith(H5HandlerInputParams(device.screen("page"), {}, [&](const Value&) { ++answers; }));
    auto picker = device.pickers().shownDocumentPickers().at(0);
    if (!releaseAfterPick) handler.reset();
    EXPECT_TRUE(picker->pickDocuments({fileUrl("README")}));
    handler.reset();
    settle();
    EXPECT_EQ(answers, 0) << releaseAfterPick;
    EXPECT_TRUE(device.pickers().shownDocumentPickers().empty());
  }
}

TEST(FilePickerVerdictTest, RulesApplyInOrder) {
  const auto dir = std::filesystem::path(VANTU_RUNNER_CASES) / "files";
  const auto props = [&](std::string name, std::int64_t size, std::string file) {
    return H5FileProperties{name, size, FilePickerCoordinator::typeOfName(name), fileUrlFromPath((dir / file).string())};
  };
  const auto metaError = pickers::makeError(FilePickerCoordinator::kErrorDomain, 1, FilePickerCoordinator::kMetadataFailed);
  struct Case {
    H5FileCoordinationResult result;
    std::string restrictions;
    std::string expected;
  };
  const Case cases[] = {
      {{props("report.PDF", 10, "report.PDF"), {}}, R"({"extensionsAllowed": ["PDF"]})",
       R"({"error":"FilePickerHandler: Extension of the processed file is not present in the allowed extensions!"})"},
      {{props("report.PDF", 10, "report.PDF"), {}}, R"({"extensionsAllowed": []})",
       R"({"error":"FilePickerHandler: Extension of the processed file is not present in the allowed extensions!"})"},
      {{props("a.", 10, "report.PDF"), metaError}, "{}", R"({"error":"Failed to read meta data"})"},
      {{props("report.pdf", 10, "report.PDF"), metaError}, "{}", R"({"error":"Failed to read meta data"})"},
      {{props("report.pdf", 0, "report.PDF"), metaError}, "{}", R"({"error":"FilePickerHandler: Invalid file size : <= 0"})"},
      {{props("report.pdf", 11, "report.PDF"), {}}, R"({"maxLengthPerFile": 10})",
       R"({"error":"FilePickerHandler: Invalid file size : > Max File Size"})"},
      {{props("report.pdf", 10, "report.PDF"), {}}, R"({"maxLengthPerFile": "1"})",
       R"({"meta":{"fileName":"report.pdf","fileSize":10,"fileType":"pdf"},"base64":"aGVsbG8gcGRmCg=="})"},
      // Unreadable content (a folder): the entry has no "base64".
      {{props("box.bin", 5, ""), {}}, "{}", R"({"meta":{"fileName":"box.bin","fileSize":5,"fileType":"bin"}})"},
      {{std::nullopt, {}}, "{}",
       R"({"error":"FilePickerHandler: Extension of the processed file is not present in the allowed extensions!"})"},
  };
  for (const auto& c : cases) {
    auto restrictions = H5FileRestrictions::bind(*json::parse(c.restrictions).value().asDict());
    EXPECT_EQ(json::write(FilePickerHandler::entryFor(c.result, restrictions, FilePickerHandler::kDefaultMaxReadBytes)),
              c.expected)
        << c.restrictions;
  }
  // Over the read limit: an error entry instead of the content.
  EXPECT_EQ(json::write(FilePickerHandler::entryFor({props("report.PDF", 10, "report.PDF"), {}}, {}, 9)),
            R"({"error":"FilePickerHandler: File is larger than the read limit!"})");
  EXPECT_EQ(FilePickerCoordinator::typeOfName("README"), "README");
}

TEST(FileUrlTest, RoundTripsAndRejects) {
  for (std::string path : {"/a b/ç%.png", "/tmp/x", "/"}) EXPECT_EQ(pathFromFileUrl(fileUrlFromPath(path)), path);
  EXPECT_EQ(fileUrlFromPath("/a b/%"), "file:///a%20b/%25");
  EXPECT_EQ(pathFromFileUrl("file://localhost/etc/hosts"), "/etc/hosts");
  for (const char* url : {"https://x/a.png", "file://server/a", "file:///a%2", "a.png"}) EXPECT_FALSE(pathFromFileUrl(url)) << url;
  EXPECT_EQ(lastPathComponent("/a/b.png/"), "b.png");
}

}  // namespace
}  // namespace vantu::testing_support
