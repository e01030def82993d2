#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuOpenDeeplink": asks the host to open the page's "deeplink" (a
/// string, checked before anything else). {"data": {"success": true}} when
/// the host managed it.
class DeeplinkHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuOpenDeeplink";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
