#pragma once
// The process-wide environment: the host's providers, set up at start-up on
// the main thread and read there.

#include <memory>

#include "vantu/core/h5_data_providers.h"
#include "vantu/platform/object.h"

namespace vantu {

class Laizaxlu : public Object {
 public:
  /// The one instance, created on first use.
  static Laizaxlu& shared();

  /// Stores the bundle (nullptr clears it), replacing any earlier one.
  void setupWith(std::shared_ptr<H5DataProviders> h5DataProviders);
  const std::shared_ptr<H5DataProviders>& h5DataProviders() const { return h5DataProviders_; }

  /// Testing only: back to the state of a fresh process.
  void resetForTesting();

 private:
  Laizaxlu() = default;

  std::shared_ptr<H5DataProviders> h5DataProviders_;
};

}  // namespace vantu
