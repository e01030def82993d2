#pragma once
// Which camera a picker's rear/front choice opens, among the video sources
// the system lists.
//
// A desktop rarely says which way its cameras face. The rule, in order:
//  1. a camera that declares the wanted side (a "front"/"back" location
//     property, as libcamera and PipeWire report) is taken, the first one;
//  2. else a camera whose name says it ("front", "user" for the front;
//     "rear", "back", "world" for the rear);
//  3. else, among the cameras that say nothing about their side, the front
//     choice takes the first one listed (a laptop's built-in camera, which
//     faces the user, is listed before added ones) and the rear choice the
//     last one (an added camera, pointed at the scene); with one camera
//     both choices open it;
//  4. else (every camera faces the other way) the first camera listed: a
//     picker that asked for a side the device lacks still gets a picture.
// No camera: nothing.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vantu::camera {

enum class Facing { rear, front };

struct CameraInfo {
  std::string name;
  /// The declared side, "front" or "back" ("rear" is read as "back"); empty
  /// when the camera does not say.
  std::string location;
};

/// The index in `cameras` of the camera the rule above gives for `wanted`.
std::optional<std::size_t> chooseCamera(const std::vector<CameraInfo>& cameras, Facing wanted);

}  // namespace vantu::camera
