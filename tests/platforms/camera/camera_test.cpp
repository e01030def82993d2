// Camera capture on GStreamer: which listed camera a rear/front choice opens,
// real frames from a test source through the capture pipeline, and the
// container's camera availability without a camera.

#include <gtest/gtest.h>

#include "platforms/camera/camera_choice.h"
#include "platforms/camera/camera_session.h"
#include "platforms/gtk/container_application.h"
#include "platforms/linux/linux_dispatch.h"

namespace vantu::camera {
namespace {

constexpr auto kWait = std::chrono::seconds(30);

TEST(CameraChoice, RearAndFrontMapOntoTheListedCameras) {
  constexpr auto none = std::optional<std::size_t>();
  // The cameras, then the one opened for the rear and for the front.
  const std::tuple<std::vector<CameraInfo>, std::optional<std::size_t>, std::optional<std::size_t>> cases[] = {
      {{}, none, none},
      // Unmarked: the first listed faces the user, the last the scene.
      {{{"Integrated Camera", ""}, {"USB Camera", ""}, {"Capture Card", ""}}, 2, 0},
      // A declared location beats the order and the names.
      {{{"Front Camera", "back"}, {"Sensor", "front"}}, 0, 1},
      {{{"cam", "external"}, {"cam", "Rear"}}, 1, 0},
      // Names, as whole words only ("username" says nothing).
      {{{"User-facing camera", ""}, {"World camera", ""}}, 1, 0},
      {{{"Backlit username cam", ""}, {"Other", ""}}, 1, 0},
      // Only the other side exists: the first camera still opens.
      {{{"Front A", ""}, {"Front B", ""}}, 0, 0},
  };
  for (const auto& [cameras, rear, front] : cases) {
    EXPECT_EQ(chooseCamera(cameras, Facing::rear), rear) << cameras.size() << " cameras";
    EXPECT_EQ(chooseCamera(cameras, Facing::front), front) << cameras.size() << " cameras";
  }
}

class CameraCapture : public ::testing::Test {
 protected:
  std::shared_ptr<linux_platform::LinuxDispatch> dispatch = std::make_shared<linux_platform::LinuxDispatch>();
  bool runUntil(const std::function<bool()>& done) { return dispatch->loop()->runUntil(done, kWait); }
};

TEST_F(CameraCapture, FramesFromATestSourceArriveAsRgbaImagesOfItsSize) {
  // BGRx in, so the pipeline's conversion to RGBA must put the channels in order.
  std::string error;
  GstElement* source = sourceFromDescription(
      "videotestsrc pattern=solid-color foreground-color=0xff102030 ! capsfilter caps=video/x-raw,format=BGRx,width=50,height=30",
      error);
  ASSERT_NE(source, nullptr) << error;
  int frames = 0;
  std::string failure;
  CameraSession session(dispatch, source, [&](const std::shared_ptr<const Image>&) { ++frames; },
                        [&](const std::string& message) { failure = message; });
  ASSERT_TRUE(runUntil([&] { return frames >= 2 || !failure.empty(); })) << "no frames";
  ASSERT_EQ(failure, "");
  auto frame = session.latestFrame();
  ASSERT_NE(frame, nullptr);
  EXPECT_EQ(frame->size, (Size{50, 30}));
  ASSERT_EQ(frame->bytes.size(), 50u * 30 * 4);
  const std::vector<std::uint8_t> pixel = {0x10, 0x20, 0x30, 0xff}, first(frame->bytes.begin(), frame->bytes.begin() + 4),
                                  last(frame->bytes.end() - 4, frame->bytes.end());
  EXPECT_EQ(first, pixel);
  EXPECT_EQ(last, pixel);
  session.stop();
  const int seen = frames;
  dispatch->loop()->runUntilIdle();
  EXPECT_EQ(frames, seen) << "a frame reached the handler after stop";
}

TEST_F(CameraCapture, BrokenSourcesAreReported) {
  std::string error, failure;
  EXPECT_EQ(sourceFromDescription("no-such-element-anywhere", error), nullptr);
  EXPECT_NE(error, "");
  GstElement* source = sourceFromDescription("v4l2src device=/nonexistent/video9", error);
  ASSERT_NE(source, nullptr) << error;
  CameraSession session(dispatch, source, {}, [&](const std::string& message) { failure = message; });
  EXPECT_TRUE(runUntil([&] { return !failure.empty(); }));
  EXPECT_EQ(session.latestFrame(), nullptr);
}

TEST_F(CameraCapture, WithoutACameraOnlyTheLibrarySourcesAreAvailable) {
  // A device class no provider lists: the machine has no camera.
  gtk::ContainerApplication application(dispatch, {}, "Vantu/NoSuchDevice");
  ASSERT_TRUE(runUntil([&] { return application.cameras().isListed(); }));
  EXPECT_TRUE(application.cameras().cameras().empty());
  EXPECT_FALSE(application.isImagePickerSourceAvailable(ImagePickerSource::camera));
  EXPECT_TRUE(application.isImagePickerSourceAvailable(ImagePickerSource::photoLibrary));
  EXPECT_TRUE(application.isImagePickerSourceAvailable(ImagePickerSource::savedPhotosAlbum));
  std::string error;
  EXPECT_EQ(application.createCameraSource(ImagePickerController::CameraDevice::front, error), nullptr);
  EXPECT_EQ(error, "no camera is connected");
  // A configured source makes the camera available: tests/platforms/gtk (the camera preview).
  application.setCameraScripted(true);  // so does a scripted camera
  EXPECT_TRUE(application.isImagePickerSourceAvailable(ImagePickerSource::camera));
}

}  // namespace
}  // namespace vantu::camera
