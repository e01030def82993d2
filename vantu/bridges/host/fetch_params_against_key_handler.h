#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuFetchParamsAgainstKey": asks the host for what it holds under
/// "key" (a string, checked before anything else). {"success": true,
/// "data": the host's value, or [] when it gave none}.
class FetchParamsAgainstKeyHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuFetchParamsAgainstKey";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
