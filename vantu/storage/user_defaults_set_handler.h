#pragma once

#include "vantu/storage/user_defaults_base_handler.h"

namespace vantu {

/// "vantuSaveData": {"data": {key: value, ...}} (may be empty) -> {"data":
/// {}} once stored and synchronized. Holds itself weakly while the store
/// works: once the handler is gone, nothing is answered.
class UserDefaultsSetHandler : public UserDefaultsBaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuSaveData";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
