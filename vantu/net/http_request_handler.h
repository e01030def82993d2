#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "httpRequest": hands the page's arguments to a fresh HTTPAPIManager and
/// answers its result as the whole payload ({"headers", "status", "data",
/// "headersStr"}, whatever the status), a failure as {message: code}, and
/// anything else as the flat error "failed to fetch access token!". The
/// request's measurements go to the host delegate's trackWithOstrix.
class HTTPRequestHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "httpRequest";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
