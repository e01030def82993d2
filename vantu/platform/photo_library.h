#pragma once
// Photo library port: adds pictures to the user's library. Access is asked
// through the authorisation port (ProtectedResource::photoLibrary).

#include <functional>
#include <optional>

#include "vantu/platform/platform_error.h"
#include "vantu/value/value.h"

namespace vantu {

class PhotoLibrary {
 public:
  using Completion = std::function<void(bool success, std::optional<PlatformError> error)>;

  virtual ~PhotoLibrary() = default;

  /// Creates one asset from the encoded picture (PNG, JPEG, GIF or BMP) and
  /// calls `completion` once, on a thread of the platform's choosing.
  void createAsset(Bytes encodedImage, Completion completion) {
    doCreateAsset(std::move(encodedImage), std::move(completion));
  }

 protected:
  virtual void doCreateAsset(Bytes encodedImage, Completion completion) = 0;
};

}  // namespace vantu
