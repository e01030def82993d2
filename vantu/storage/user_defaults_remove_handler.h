#pragma once

#include "vantu/storage/user_defaults_base_handler.h"

namespace vantu {

/// "vantuRemoveData": {"keys": [string, ...]} (non-empty) -> {"data": {}}.
/// Holds itself weakly while the store works: once the handler is gone,
/// nothing is answered.
class UserDefaultsRemoveHandler : public UserDefaultsBaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuRemoveData";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
