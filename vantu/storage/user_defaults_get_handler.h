#pragma once

#include "vantu/storage/user_defaults_base_handler.h"

namespace vantu {

/// "vantuGetData": {"keys": [string, ...]} (non-empty) -> {"data": {key:
/// value}}, a key with nothing stored reading "". Holds only the callback
/// while the store works, so it always answers.
class UserDefaultsGetHandler : public UserDefaultsBaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuGetData";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
