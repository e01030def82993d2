#include "platforms/camera/camera_session.h"

#include <gst/app/gstappsink.h>
#include <gst/video/video.h>

#include <atomic>
#include <cstring>
#include <mutex>

namespace vantu::camera {
namespace {

// The sample's picture as tightly packed RGBA rows; nullptr when the
// sample is not RGBA video.
std::shared_ptr<const Image> imageFromSample(GstSample* sample) {
  GstVideoInfo info;
  GstCaps* caps = gst_sample_get_caps(sample);
  GstBuffer* buffer = gst_sample_get_buffer(sample);
  if (!caps || !buffer || !gst_video_info_from_caps(&info, caps) || GST_VIDEO_INFO_FORMAT(&info) != GST_VIDEO_FORMAT_RGBA) {
    return nullptr;
  }
  GstVideoFrame frame;
  if (!gst_video_frame_map(&frame, &info, buffer, GST_MAP_READ)) return nullptr;
  const int width = GST_VIDEO_FRAME_WIDTH(&frame);
  const int height = GST_VIDEO_FRAME_HEIGHT(&frame);
  const int stride = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
  const auto* pixels = static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0));
  auto image = std::make_shared<Image>();
  image->size = Size{static_cast<double>(width), static_cast<double>(height)};
  const std::size_t row = static_cast<std::size_t>(width) * 4;
  image->bytes.resize(row * height);
  for (int y = 0; y < height; ++y) std::memcpy(image->bytes.data() + row * y, pixels + static_cast<std::size_t>(stride) * y, row);
  gst_video_frame_unmap(&frame);
  return image;
}

}  // namespace

GstElement* sourceFromDescription(const std::string& description, std::string& error) {
  if (!gst_is_initialized()) gst_init(nullptr, nullptr);
  GError* parseError = nullptr;
  GstElement* bin = gst_parse_bin_from_description(description.c_str(), TRUE, &parseError);
  if (parseError) {
    error = parseError->message;
    g_error_free(parseError);
    if (bin) gst_object_unref(bin);
    return nullptr;
  }
  return bin;
}

// What the streaming thread and the main queue share. Handlers are only
// touched on the main queue.
struct CameraSession::Shared {
  std::shared_ptr<SerialQueue> main;
  GstElement* pipeline = nullptr;
  std::mutex mutex;
  std::shared_ptr<const Image> pending;  // newest frame not yet taken by the main queue
  std::atomic<bool> posted{false};
  bool stopped = false;  // main queue only
  FrameHandler onFrame;
  ErrorHandler onError;

  void frameArrived(std::shared_ptr<const Image> image, const std::shared_ptr<Shared>& self) {
    {
      std::lock_guard lock(mutex);
      pending = std::move(image);
    }
    if (posted.exchange(true)) return;
    main->async([self] {
      self->posted = false;
      std::shared_ptr<const Image> frame;
      {
        std::lock_guard lock(self->mutex);
        frame = std::move(self->pending);
      }
      if (frame && !self->stopped && self->onFrame) self->onFrame(frame);
    });
  }

  void failed(std::string message, const std::shared_ptr<Shared>& self) {
    main->async([self, message = std::move(message)] {
      if (!self->stopped && self->onError) self->onError(message);
    });
  }
};

CameraSession::CameraSession(std::shared_ptr<Dispatch> dispatch, GstElement* source, FrameHandler onFrame,
                             ErrorHandler onError)
    : dispatch_(std::move(dispatch)),
      worker_(dispatch_->makeSerialQueue("com.vantu.camera.Session")),
      shared_(std::make_shared<Shared>()) {
  if (!gst_is_initialized()) gst_init(nullptr, nullptr);
  shared_->main = dispatch_->main();
  shared_->onFrame = [this, onFrame = std::move(onFrame)](const std::shared_ptr<const Image>& frame) {
    latest_ = frame;
    if (onFrame) onFrame(frame);
  };
  shared_->onError = std::move(onError);

  GstElement* pipeline = gst_pipeline_new("vantu-camera");
  GstElement* convert = gst_element_factory_make("videoconvert", nullptr);
  GstElement* sink = gst_element_factory_make("appsink", nullptr);
  shared_->pipeline = pipeline;
  if (!source || !convert || !sink) {
    for (GstElement* e : {source, convert, sink}) {
      if (e) gst_object_unref(gst_object_ref_sink(e));
    }
    shared_->failed(source ? "GStreamer's videoconvert or appsink element is missing" : "no camera source", shared_);
    return;
  }
  gst_bin_add_many(GST_BIN(pipeline), source, convert, sink, nullptr);
  GstCaps* rgba = gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "RGBA", nullptr);
  const bool linked = gst_element_link(source, convert) && gst_element_link_filtered(convert, sink, rgba);
  gst_caps_unref(rgba);
  if (!linked) {
    shared_->failed("the camera's video cannot be converted to RGBA", shared_);
    return;
  }
  g_object_set(sink, "max-buffers", 1u, "drop", TRUE, nullptr);
  GstAppSinkCallbacks callbacks{};
  callbacks.new_sample = [](GstAppSink* appsink, gpointer data) -> GstFlowReturn {
    const auto& self = *static_cast<std::shared_ptr<Shared>*>(data);
    GstSample* sample = gst_app_sink_pull_sample(appsink);
    if (!sample) return GST_FLOW_EOS;
    auto image = imageFromSample(sample);
    gst_sample_unref(sample);
    if (image) self->frameArrived(std::move(image), self);
    return GST_FLOW_OK;
  };
  gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, new std::shared_ptr<Shared>(shared_),
                             [](gpointer data) { delete static_cast<std::shared_ptr<Shared>*>(data); });
  // Errors are read on the thread that posts them, as the bus has no main
  // context watching it.
  GstBus* bus = gst_element_get_bus(pipeline);
  gst_bus_set_sync_handler(
      bus,
      [](GstBus*, GstMessage* message, gpointer data) -> GstBusSyncReply {
        const auto& self = *static_cast<std::shared_ptr<Shared>*>(data);
        if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
          GError* error = nullptr;
          gst_message_parse_error(message, &error, nullptr);
          self->failed(error ? error->message : "the camera failed", self);
          if (error) g_error_free(error);
        }
        return GST_BUS_DROP;
      },
      new std::shared_ptr<Shared>(shared_), [](gpointer data) { delete static_cast<std::shared_ptr<Shared>*>(data); });
  gst_object_unref(bus);
  worker_->async([shared = shared_] {
    if (gst_element_set_state(shared->pipeline, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
      shared->failed("the camera could not be started", shared);
    }
  });
}

CameraSession::~CameraSession() { stop(); }

void CameraSession::stop() {
  if (shared_->stopped) return;
  shared_->stopped = true;
  shared_->onFrame = nullptr;
  shared_->onError = nullptr;
  // The callbacks' copies of the shared state are dropped with the
  // pipeline, on the worker queue. The task holds the queue, so the last
  // reference goes there and the main thread never waits for the worker.
  worker_->async([shared = shared_, worker = worker_] {
    gst_element_set_state(shared->pipeline, GST_STATE_NULL);
    GstBus* bus = gst_element_get_bus(shared->pipeline);
    gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
    gst_object_unref(bus);
    gst_object_unref(shared->pipeline);
    shared->pipeline = nullptr;
  });
}

}  // namespace vantu::camera
