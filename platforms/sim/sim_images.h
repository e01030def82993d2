#pragma once
// The simulated application's bundled images: a name -> image table that
// starts with the images the library expects a host to ship, and that tests
// may change.

#include <map>
#include <memory>
#include <string>

#include "vantu/platform/images.h"

namespace vantu::sim {

class SimImageStore : public ImageStore {
 public:
  /// Starts with "nearby_servertakingtime" (a small made-up picture).
  SimImageStore();

  void add(Image image);
  void remove(std::string_view name);

 protected:
  std::shared_ptr<const Image> doImageNamed(std::string_view name) const override;

 private:
  std::map<std::string, std::shared_ptr<const Image>, std::less<>> images_;
};

/// The stand-in for the host's "nearby_servertakingtime" picture: 4 x 4
/// pixels, a light grey square with a dark diagonal.
Image simServerTakingTimeImage();

}  // namespace vantu::sim
