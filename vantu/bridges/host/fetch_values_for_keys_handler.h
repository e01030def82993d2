#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuFetchValuesForKeys": asks the host for the values of "keys" (an
/// array of strings). Unlike the other bridges of the family, it looks for
/// the host delegate before checking "keys". {"data": the host's value, or
/// [] when it gave none}.
class FetchValuesForKeysHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuFetchValuesForKeys";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
