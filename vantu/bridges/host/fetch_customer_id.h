#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuFetchCustomerId": answers the host's customer id value itself, not
/// wrapped in "data" (null when the host gave none).
class FetchCustomerId : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuFetchCustomerId";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
