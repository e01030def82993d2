#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuAnalyticsTracking": hands the page's whole "data" to the host as
/// the variables of one custom event. {"success": true, "data": the host's
/// value}.
class TrackEventHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuAnalyticsTracking";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
