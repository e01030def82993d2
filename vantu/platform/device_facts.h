#pragma once
// Facts of the device and of the host application bundle.

#include <optional>

#include "vantu/value/value.h"

namespace vantu {

class DeviceFacts {
 public:
  virtual ~DeviceFacts() = default;

  /// The host application's main-bundle information dictionary, if any.
  std::optional<Dict> bundleInfo() const { return mainBundleInfo(); }

 protected:
  virtual std::optional<Dict> mainBundleInfo() const = 0;
};

}  // namespace vantu
