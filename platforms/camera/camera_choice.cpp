#include "platforms/camera/camera_choice.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace vantu::camera {
namespace {

std::string lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

// Whether `name` holds one of `words` as a whole word (letters around it
// would make it part of another word: "user" is not in "username").
bool namesAny(const std::string& name, std::initializer_list<std::string_view> words) {
  const std::string text = lowered(name);
  for (std::string_view word : words) {
    for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
      const bool startsWord = at == 0 || !std::isalpha(static_cast<unsigned char>(text[at - 1]));
      const auto end = at + word.size();
      const bool endsWord = end == text.size() || !std::isalpha(static_cast<unsigned char>(text[end]));
      if (startsWord && endsWord) return true;
    }
  }
  return false;
}

// The side a camera states, by its location or else by its name.
std::optional<Facing> statedSide(const CameraInfo& camera, bool byName) {
  const std::string location = lowered(camera.location);
  if (!byName) {
    if (location == "front") return Facing::front;
    if (location == "back" || location == "rear") return Facing::rear;
    return std::nullopt;
  }
  if (namesAny(camera.name, {"front", "user"})) return Facing::front;
  if (namesAny(camera.name, {"rear", "back", "world"})) return Facing::rear;
  return std::nullopt;
}

}  // namespace

std::optional<std::size_t> chooseCamera(const std::vector<CameraInfo>& cameras, Facing wanted) {
  if (cameras.empty()) return std::nullopt;
  for (bool byName : {false, true}) {
    for (std::size_t i = 0; i < cameras.size(); ++i) {
      if (statedSide(cameras[i], byName) == wanted) return i;
    }
  }
  std::vector<std::size_t> silent;
  for (std::size_t i = 0; i < cameras.size(); ++i) {
    if (!statedSide(cameras[i], false) && !statedSide(cameras[i], true)) silent.push_back(i);
  }
  if (!silent.empty()) return wanted == Facing::front ? silent.front() : silent.back();
  return 0;
}

}  // namespace vantu::camera
