// The image bridges on the simulated device: check orders, the busy flag
// while a picker is up, cancellation, a handler gone before the result,
// and what is made of a library pick or a camera capture.

#include <gmock/gmock.h>

#include "tests/pickers/picker_test_fixture.h"
#include "vantu/core/image_decoder.h"
#include "vantu/pickers/image_pick_post_processor.h"
#include "vantu/pickers/open_gallery_and_pick_image_handler.h"
#include "vantu/value/base64.h"

namespace vantu::testing_support {
namespace {

constexpr std::string_view kGallery = "vantuOpenGallery";
constexpr std::string_view kCamera = "vantuCaptureImageFromCamera";

TEST_F(PickerTest, GalleryAndCameraCheckTheirConditionsInTheirOwnOrder) {
  struct Case {
    std::string_view bridge, scenario, screen, expected;
  };
  const Case cases[] = {
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
  for (const auto& c : cases) {
    apply(c.scenario);
    auto outcome = call(c.bridge, "{}", c.screen);
    EXPECT_THAT(outcome.answers, ::testing::ElementsAre(flatError(c.expected))) << c.bridge << " " << c.scenario;
    if (!c.screen.empty()) {
      EXPECT_THAT(outcome.reported, ::testing::ElementsAre(std::string(c.bridge)));
    }
    EXPECT_TRUE(outcome.effects.empty());
    apply(R"({"device": {"imagePickerSources": ["photoLibrary", "camera"]},
              "permissions": {"photoLibrary": "authorized", "camera": "authorized"}})");
  }
}

TEST_F(PickerTest, SecondCallWhileThePickerIsUpIsBusyUntilTheUserCancels) {
  EXPECT_TRUE(send(kGallery, "{}", "page").empty());
  ASSERT_EQ(device.pickers().shownImagePickers().size(), 1u);
  EXPECT_THAT(send(kGallery, "{}", "page"), ::testing::ElementsAre(flatError(OpenGalleryAndPickImageHandler::kBusy)));
  // The camera tests its availability before its own busy flag.
  EXPECT_TRUE(send(kCamera, "{}", "other").empty());
  apply(R"({"device": {"imagePickerSources": ["photoLibrary"]}})");
  EXPECT_THAT(send(kCamera, "{}", "page"), ::testing::ElementsAre(flatError("CaptureImageFromCamera: Camera is unavailable!")));
  apply(R"({"device": {"imagePickerSources": ["photoLibrary", "camera"]}})");
  EXPECT_THAT(send(kCamera, "{}", "page"), ::testing::ElementsAre(flatError("CaptureImageFromCamera: Bridge is busy!")));

  cancelImagePicker("page");
  EXPECT_THAT(collect().answers, ::testing::ElementsAre(flatError("User cancelled the operation!")));
  EXPECT_TRUE(send(kGallery, "{}", "page").empty());  // not busy any more: the picker shows again
  pickImage("page", R"("photo.png")");
  EXPECT_THAT(collect().answers, ::testing::ElementsAre(::testing::HasSubstr(R"("imageName":"photo.png")")));
}

TEST_F(PickerTest, HandlerReleasedBeforeTheResultAnswersNothing) {
  auto handler = std::make_shared<OpenGalleryAndPickImageHandler>();
  int answers = 0;
  handler->handleWith(H5HandlerInputParams(device.screen("page"), {}, [&](const Value&) { ++answers; }));
  EXPECT_TRUE(handler->isBridgeBusy());
  handler.reset();
  pickImage("page", R"("photo.png")");
  EXPECT_EQ(answers, 0);
  // The picker's delegate went with the handler: nothing dismisses it.
  EXPECT_EQ(device.pickers().shownImagePickers().size(), 1u);
}

TEST_F(PickerTest, LibraryPickNameTypeSizeAndFailures) {
  struct Case {
    std::string choice;  // the pickImage JSON
    std::string expected;
  };
  const Case cases[] = {
      {R"("photo.JPEG")", R"("meta":{"imageName":"photo.JPEG","imageType":"jpg","imageSize":722}})"},
      {R"("photo.heic")", R"({"data":{"base64":"iVBORw0KGgo)"},
      {R"("photo.heic")", R"("meta":{"imageName":"photo.heic","imageType":"","imageSize":78}})"},
      {R"({"file": "photo.png", "url": null})",
       flatError("info[UIImagePickerControllerImageURL] could not be bound; ios ver >= 11")},
      {R"({"file": "photo.png", "url": ")" + fileUrl("gone.png") + "\"}", flatError("Failed to read data from path!")},
      {R"({"file": "photo.png", "url": "file://"})", flatError("Could not extract image path!")},
      {R"("notes.txt")", flatError("OpenGalleryAndPickImageHandler: Failed to bind selected asset!")},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(send(kGallery, "{}", "page").empty());
    pickImage("page", c.choice);
    EXPECT_THAT(collect().answers, ::testing::ElementsAre(::testing::HasSubstr(c.expected))) << c.choice;
  }
  apply(R"({"device": {"systemVersion": "10.3"}})");
  EXPECT_TRUE(send(kGallery, "{}", "page").empty());
  pickImage("page", R"({"file": "photo.png", "url": null})");
  EXPECT_THAT(collect().answers,
              ::testing::ElementsAre(flatError("info[UIImagePickerControllerReferenceURL] could not be bound; ios ver < 11")));
}

TEST_F(PickerTest, CameraCaptureIsAFullQualityJpegNamedAfterTheTime) {
  advance(2.5);
  EXPECT_TRUE(send(kCamera, R"({"useFrontCamera": true})", "page").empty());
  pickImage("page", R"("photo.png")");
  auto answers = collect().answers;
  ASSERT_EQ(answers.size(), 1u);
  auto answer = json::parse(answers[0]).value();
  const Dict data = *answer.asDict()->getDict("data");
  EXPECT_EQ(json::write(*data.find("meta")), json::write(dataOf(R"({"imageName": "1700000002_625.jpg", "imageType": "jpg",
      "imageSize": )" + std::to_string(base64::decode(*data.getString("base64"))->size()) + "}")));
  // Decoded again, the 2x2 picture keeps its colours within a step or two.
  auto jpeg = base64::decode(*data.getString("base64"));
  ASSERT_TRUE(jpeg && jpeg->size() > 2 && (*jpeg)[0] == 0xFF && (*jpeg)[1] == 0xD8);
  auto decoded = decodeImage(*jpeg);
  ASSERT_TRUE(decoded);
  const std::uint8_t red[] = {255, 0, 0, 255};
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(decoded->bytes[i], red[i], 40);
  EXPECT_EQ(ImagePickPostProcessor::cameraImageName(1700000000.0), "1700000000_0.jpg");
  EXPECT_EQ(ImagePickPostProcessor::cameraImageName(1700000000.123456), "1700000000_123456.jpg");
}

TEST(ImagePickPostProcessorTest, CaptureEncodingErrors) {
  const Image image{"", {1, 1}, {1, 2, 3, 255}};
  struct Case {
    const Image* image;
    std::optional<std::string> type;
    std::optional<std::int64_t> code;
  };
  const Case cases[] = {{nullptr, "jpg", 6}, {&image, std::nullopt, 7}, {&image, "gif", 8},
                        {&image, "png", std::nullopt}, {&image, "jpeg", std::nullopt}};
  for (const auto& c : cases) {
    H5ImagePickPostProcessingResult result;
    ImagePickPostProcessor::encodeCapturedImage(c.image, c.type, result);
    EXPECT_EQ(result.imageSizeError ? std::optional(result.imageSizeError->code) : std::nullopt, c.code);
    EXPECT_EQ(result.base64.has_value(), !c.code);
  }
  // An encoder that yields nothing: no bytes, no error.
  H5ImagePickPostProcessingResult broken;
  const Image noPixels{"", {2, 2}, {}};
  ImagePickPostProcessor::encodeCapturedImage(&noPixels, "png", broken);
  EXPECT_FALSE(broken.base64 || broken.imageSize || broken.imageSizeError);
}

}  // namespace
}  // namespace vantu::testing_support
