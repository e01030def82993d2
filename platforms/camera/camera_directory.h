#pragma once
// The cameras of the machine, from GStreamer's device monitor ("Video/Source"
// devices: V4L2 cameras, and PipeWire's when its provider is installed).
//
// The monitor is made and started on a worker queue (GStreamer's first
// initialisation reads its plugin registry, and providers probe devices:
// both may take a while) and keeps the list current as cameras come and go; every
// query answers from the list as it stands, so none of them waits.

#include <gst/gst.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platforms/camera/camera_choice.h"
#include "vantu/platform/dispatch.h"

namespace vantu::camera {

class CameraDirectory {
 public:
  /// Lists devices of `deviceClass` (the video sources by default).
  explicit CameraDirectory(std::shared_ptr<Dispatch> dispatch, std::string deviceClass = "Video/Source");
  /// Stops the monitor on the worker queue.
  ~CameraDirectory();
  CameraDirectory(const CameraDirectory&) = delete;
  CameraDirectory& operator=(const CameraDirectory&) = delete;

  /// Starts the monitor; `listed` runs on the main queue once the first
  /// listing is in.
  void start(std::function<void()> listed = {});

  /// Whether the first listing is in.
  bool isListed() const;
  /// The cameras as listed now.
  std::vector<CameraInfo> cameras() const;
  /// A new source element for the camera `wanted` maps onto (see
  /// camera_choice.h), or nullptr without cameras. The caller owns it.
  GstElement* createSource(Facing wanted) const;

 private:
  struct State;
  std::shared_ptr<Dispatch> dispatch_;
  std::shared_ptr<SerialQueue> worker_;
  std::shared_ptr<State> state_;
};

}  // namespace vantu::camera
