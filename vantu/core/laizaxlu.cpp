#include "vantu/core/laizaxlu.h"

namespace vantu {

Laizaxlu& Laizaxlu::shared() {
  // Never destroyed: completions may still reach it while the process exits.
  static Laizaxlu* instance = new Laizaxlu();
  return *instance;
}

void Laizaxlu::setupWith(std::shared_ptr<H5DataProviders> h5DataProviders) {
  h5DataProviders_ = std::move(h5DataProviders);
}

void Laizaxlu::resetForTesting() { h5DataProviders_.reset(); }

}  // namespace vantu
