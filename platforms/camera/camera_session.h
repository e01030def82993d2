#pragma once
// A running camera: source ! videoconvert ! RGBA ! appsink. Frames are
// converted to `Image`s on GStreamer's streaming thread and handed to the
// main queue, the newest one only (a frame that arrives while the previous
// one has not been taken replaces it), so a slow main loop never queues a
// backlog. Starting and stopping the pipeline (opening and closing the
// device) run on a worker queue.

#include <gst/gst.h>

#include <functional>
#include <memory>
#include <string>

#include "vantu/platform/dispatch.h"
#include "vantu/platform/images.h"

namespace vantu::camera {

/// A source element from a pipeline description ("videotestsrc ! capsfilter
/// caps=video/x-raw,width=64,height=48"; caps may not end it, as a bin
/// ending in an unlinked source pad is made of it), or nullptr with the
/// reason in `error`. The caller owns it.
GstElement* sourceFromDescription(const std::string& description, std::string& error);

class CameraSession {
 public:
  using FrameHandler = std::function<void(const std::shared_ptr<const Image>&)>;
  using ErrorHandler = std::function<void(const std::string&)>;

  /// Plays `source` (taken over); `onFrame` and `onError` run on the main
  /// queue until `stop`.
  CameraSession(std::shared_ptr<Dispatch> dispatch, GstElement* source, FrameHandler onFrame, ErrorHandler onError);
  /// Stops, if not done yet.
  ~CameraSession();
  CameraSession(const CameraSession&) = delete;
  CameraSession& operator=(const CameraSession&) = delete;

  /// The newest frame handed to the main queue (nullptr before the first).
  std::shared_ptr<const Image> latestFrame() const { return latest_; }
  /// Silences the handlers and shuts the pipeline down on the worker queue.
  void stop();

 private:
  struct Shared;
  std::shared_ptr<Dispatch> dispatch_;
  std::shared_ptr<SerialQueue> worker_;
  std::shared_ptr<Shared> shared_;
  std::shared_ptr<const Image> latest_;
};

}  // namespace vantu::camera
