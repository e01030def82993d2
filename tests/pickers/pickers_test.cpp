// The picker bridges on the simulated device: check orders, the busy flag
// while a picker is up, handlers gone before the result, what is made of a
// library pick or picked files, capture names; file URLs. Runner case 16
// (pickers) pins the plain flows, a capture, cancellation and the file count limit.

#include <gmock/gmock.h>

#include <filesystem>

#include "platforms/sim/sim_pickers_input.h"
#include "tests/support/bridge_test_fixture.h"
#include "vantu/core/file_url.h"
#include "vantu/pickers/file_picker_handler.h"
#include "vantu/pickers/image_pick_post_processor.h"
#include "vantu/pickers/open_gallery_and_pick_image_handler.h"
#include "vantu/pickers/picker_error.h"

namespace vantu::testing_support {
namespace {

using ::testing::ElementsAre;
constexpr std::string_view kGallery = "vantuOpenGallery", kCamera = "vantuCaptureImageFromCamera", kPickFile = "vantuPickFile";
const std::filesystem::path kFiles = std::filesystem::path(VANTU_RUNNER_CASES) / "files";
std::string fileUrl(std::string_view file) { return fileUrlFromPath((kFiles / file).string()); }

// Two screens, full access to photos and the camera, pickers left up until the test answers them.
class Pickers : public BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    device.pickers().baseDirectory = kFiles;
    apply(R"({"delegates": {"host": {}}, "screens": [{"name": "page", "delegate": "host"}, {"name": "other"}],
              "permissions": {"photoLibrary": "authorized", "camera": "authorized"}})");
  }

  template <class Picker>
  static std::shared_ptr<Picker> onPage(const std::vector<std::shared_ptr<Picker>>& shown) {
    for (const auto& picker : shown) {
      if (picker->presentingViewController()->name() == "page") return picker;
    }
    ADD_FAILURE() << "no picker on page";
    return nullptr;
  }

  /// The user picks `choiceJson` (as the runner's pickImage takes it) in the image picker on "page".
  void pickImage(std::string_view choiceJson) {
    sim::SimPickers::ImageChoice choice;
    auto error = sim::readImageChoice(json::parse(choiceJson).value(), false, choice);
    ASSERT_FALSE(error) << *error;
    if (auto picker = onPage(device.pickers().shownImagePickers())) device.pickers().answer(picker, choice);
    settle();
  }
};

TEST_F(Pickers, GalleryAndCameraCheckTheirConditionsInTheirOwnOrder) {
  const std::tuple<std::string_view, std::string_view, std::string_view, std::string_view> cases[] = {
      {kGallery, R"({"device": {"imagePickerSources": []}, "permissions": {"photoLibrary": "denied"}})", "",
       "OpenGalleryAndPickImageHandler: No view controller!"},
      {kGallery, R"({"device": {"imagePickerSources": []}, "permissions": {"photoLibrary": "limited"}})", "page",
       OpenGalleryAndPickImageHandler::kNotAuthorized},
      {kGallery, R"({"device": {"imagePickerSources": ["camera"]}})", "page",
       "UIImagePickerController.SourceType.photoLibrary not available!"},
      {kCamera, R"({"device": {"imagePickerSources": []}, "permissions": {"camera": "denied"}})", "",
       "CaptureImageFromCamera: No view controller!"},
      {kCamera, R"({"device": {"imagePickerSources": ["photoLibrary"]}, "permissions": {"camera": "denied"}})", "page",
       "CaptureImageFromCamera: Camera is unavailable!"},
      {kCamera, R"({"device": {"imagePickerSources": ["camera"]}, "permissions": {"camera": "notDetermined"}})", "page",
       "CaptureImageFromCameraHandler: Not authorized to access Camera, first use the request permissions bridge to "
       "get access to Camera!"},
  };
  for (const auto& [bridge, scenario, screen, expected] : cases) {
    SCOPED_TRACE(std::string(bridge) + " " + std::string(scenario));
    apply(scenario);
    auto outcome = call(bridge, "{}", screen);
    EXPECT_THAT(outcome.answers, ElementsAre(flatError(expected)));
    EXPECT_EQ(outcome.reported, screen.empty() ? Strings{} : Strings{std::string(bridge)});
    EXPECT_TRUE(outcome.effects.empty());
    apply(R"({"device": {"imagePickerSources": ["photoLibrary", "camera"]},
              "permissions": {"photoLibrary": "authorized", "camera": "authorized"}})");
  }
}

// The gallery's own busy answer, and a cancel: runner case 16.
TEST_F(Pickers, CameraCallWhileThePickerIsUpIsBusyUntilTheUserCancels) {
  EXPECT_TRUE(send(kGallery, "{}", "page").empty());
  // The camera tests its availability before its own busy flag.
  EXPECT_TRUE(send(kCamera, "{}", "other").empty());
  apply(R"({"device": {"imagePickerSources": ["photoLibrary"]}})");
  EXPECT_THAT(send(kCamera, "{}", "page"), ElementsAre(flatError("CaptureImageFromCamera: Camera is unavailable!")));
  apply(R"({"device": {"imagePickerSources": ["photoLibrary", "camera"]}})");
  EXPECT_THAT(send(kCamera, "{}", "page"), ElementsAre(flatError("CaptureImageFromCamera: Bridge is busy!")));
  device.pickers().answer(onPage(device.pickers().shownImagePickers()), {sim::SimPickers::Action::cancel, {}, {}});
  settle();
  EXPECT_THAT(collect().answers, ElementsAre(flatError("User cancelled the operation!")));
  EXPECT_TRUE(send(kGallery, "{}", "page").empty());  // not busy any more: the picker shows again
  EXPECT_EQ(device.pickers().shownImagePickers().size(), 2u);
}

TEST_F(Pickers, LibraryPickNameTypeSizeAndFailures) {
  const std::pair<std::string, std::string> cases[] = {
      {R"("photo.JPEG")", R"("meta":{"imageName":"photo.JPEG","imageType":"jpg","imageSize":722}})"},
      {R"({"file": "photo.png", "url": ")" + fileUrl("gone.png") + "\"}", flatError("Failed to read data from path!")},
      {R"({"file": "photo.png", "url": "file://"})", flatError("Could not extract image path!")},
      {R"("notes.txt")", flatError("OpenGalleryAndPickImageHandler: Failed to bind selected asset!")},
  };
  for (const auto& [choice, expected] : cases) {
    EXPECT_TRUE(send(kGallery, "{}", "page").empty());
    pickImage(choice);
    EXPECT_THAT(collect().answers, ElementsAre(::testing::HasSubstr(expected))) << choice;
  }
  apply(R"({"device": {"systemVersion": "10.3"}})");
  EXPECT_TRUE(send(kGallery, "{}", "page").empty());
  pickImage(R"({"file": "photo.png", "url": null})");
  EXPECT_THAT(collect().answers,
              ElementsAre(flatError("info[UIImagePickerControllerReferenceURL] could not be bound; ios ver < 11")));
}

// A whole capture (the JPEG bytes, the name after the clock): runner case 16.
TEST(ImagePickPostProcessorTest, CaptureNamesAndEncodingErrors) {
  EXPECT_EQ(ImagePickPostProcessor::cameraImageName(1700000000.0), "1700000000_0.jpg");
  EXPECT_EQ(ImagePickPostProcessor::cameraImageName(1700000000.123456), "1700000000_123456.jpg");
  const Image image{"", {1, 1}, {1, 2, 3, 255}};
  const std::tuple<const Image*, std::optional<std::string>, std::optional<std::int64_t>> cases[] = {
      {nullptr, "jpg", 6}, {&image, std::nullopt, 7}, {&image, "gif", 8}, {&image, "png", std::nullopt},
      {&image, "jpeg", std::nullopt}};
  for (const auto& [given, type, code] : cases) {
    H5ImagePickPostProcessingResult result;
    ImagePickPostProcessor::encodeCapturedImage(given, type, result);
    EXPECT_EQ(result.imageSizeError ? std::optional(result.imageSizeError->code) : std::nullopt, code);
    EXPECT_EQ(result.base64.has_value(), !code);
  }
  // An encoder that yields nothing: no bytes, no error.
  H5ImagePickPostProcessingResult broken;
  const Image noPixels{"", {2, 2}, {}};
  ImagePickPostProcessor::encodeCapturedImage(&noPixels, "png", broken);
  EXPECT_FALSE(broken.base64 || broken.imageSize || broken.imageSizeError);
}

TEST_F(Pickers, FilePickNeedsAScreenAndAFreePickerThenAnswersEveryFileInOrder) {
  EXPECT_THAT(send(kPickFile, "{}", ""), ElementsAre(flatError(FilePickerHandler::kNoViewController)));
  EXPECT_TRUE(send(kPickFile, R"({"extensionsAllowed": ["pdf", "readme", "txt"], "maxLengthPerFile": 10})", "page").empty());
  EXPECT_THAT(send(kPickFile, "{}", "other"), ElementsAre(flatError("File picker is busy!")));
  // One file is picked twice; a URL that is not a file's cannot be coordinated. The extension and
  // size rules: runner case 16.
  auto picker = onPage(device.pickers().shownDocumentPickers());
  ASSERT_NE(picker, nullptr);
  EXPECT_TRUE(picker->pickDocuments({fileUrl("report.PDF"), fileUrl("README"), fileUrl("gone.txt"),
                                     "https://example.com/a.pdf", fileUrl("report.PDF")}));
  settle();
  EXPECT_THAT(collect().answers, ElementsAre(json::write(dataOf(R"({"data": [
      {"meta": {"fileName": "report.PDF", "fileSize": 10, "fileType": "PDF"}, "base64": "aGVsbG8gcGRmCg=="},
      {"meta": {"fileName": "README", "fileSize": 7, "fileType": "README"}, "base64": "cmVhZCBtZQ=="},
      {"error": "Failed to read meta data"},
      {"error": "Failed to coordinate reading of the file"},
      {"meta": {"fileName": "report.PDF", "fileSize": 10, "fileType": "PDF"}, "base64": "aGVsbG8gcGRmCg=="}]})"))));
}

TEST(FilePickerVerdictTest, RulesApplyInOrder) {
  const auto props = [](std::string name, std::int64_t size, std::string file) {
    return H5FileProperties{name, size, FilePickerCoordinator::typeOfName(name), fileUrlFromPath((kFiles / file).string())};
  };
  const auto metaError = pickers::makeError(FilePickerCoordinator::kErrorDomain, 1, FilePickerCoordinator::kMetadataFailed);
  const std::string notAllowed =
      R"({"error":"FilePickerHandler: Extension of the processed file is not present in the allowed extensions!"})";
  const std::tuple<H5FileCoordinationResult, std::string, std::string> cases[] = {
      {{props("report.PDF", 10, "report.PDF"), {}}, R"({"extensionsAllowed": ["PDF"]})", notAllowed},
      {{props("a.", 10, "report.PDF"), metaError}, "{}", R"({"error":"Failed to read meta data"})"},
      {{props("report.pdf", 10, "report.PDF"), metaError}, "{}", R"({"error":"Failed to read meta data"})"},
      {{props("report.pdf", 0, "report.PDF"), metaError}, "{}", R"({"error":"FilePickerHandler: Invalid file size : <= 0"})"},
      {{props("report.pdf", 11, "report.PDF"), {}}, R"({"maxLengthPerFile": 10})",
       R"({"error":"FilePickerHandler: Invalid file size : > Max File Size"})"},
      {{props("report.pdf", 10, "report.PDF"), {}}, R"({"maxLengthPerFile": "1"})",
       R"({"meta":{"fileName":"report.pdf","fileSize":10,"fileType":"pdf"},"base64":"aGVsbG8gcGRmCg=="})"},
      // Unreadable content (a folder): the entry has no "base64".
      {{props("box.bin", 5, ""), {}}, "{}", R"({"meta":{"fileName":"box.bin","fileSize":5,"fileType":"bin"}})"},
      {{std::nullopt, {}}, "{}", notAllowed},
  };
  for (const auto& [result, restrictions, expected] : cases) {
    auto bound = H5FileRestrictions::bind(*json::parse(restrictions).value().asDict());
    EXPECT_EQ(json::write(FilePickerHandler::entryFor(result, bound, FilePickerHandler::kDefaultMaxReadBytes)), expected)
        << restrictions;
  }
  // Over the read limit: an error entry instead of the content.
  EXPECT_EQ(json::write(FilePickerHandler::entryFor({props("report.PDF", 10, "report.PDF"), {}}, {}, 9)),
            R"({"error":"FilePickerHandler: File is larger than the read limit!"})");
}

// The image picker's handler released before the pick; the file picker's
// (on the other screen) before the pick, or after it while the files wait for the queue.
TEST_F(Pickers, HandlersReleasedBeforeTheResultAnswerNothing) {
  int answers = 0;
  auto gallery = std::make_shared<OpenGalleryAndPickImageHandler>();
  gallery->handleWith(H5HandlerInputParams(device.screen("page"), {}, [&](const Value&) { ++answers; }));
  EXPECT_TRUE(gallery->isBridgeBusy());
  gallery.reset();
  pickImage(R"("photo.png")");
  EXPECT_EQ(answers, 0);
  // The picker's delegate went with the handler: nothing dismisses it.
  EXPECT_EQ(device.pickers().shownImagePickers().size(), 1u);
  for (bool releaseAfterPick : {false, true}) {
    auto handler = std::make_shared<FilePickerHandler>();
    handler->handleWith(H5HandlerInputParams(device.screen("other"), {}, [&](const Value&) { ++answers; }));
    auto picker = device.pickers().shownDocumentPickers().at(0);
    if (!releaseAfterPick) handler.reset();
    EXPECT_TRUE(picker->pickDocuments({fileUrl("README")}));
    handler.reset();
    settle();
    EXPECT_EQ(answers, 0) << releaseAfterPick;
    EXPECT_TRUE(device.pickers().shownDocumentPickers().empty());
  }
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
