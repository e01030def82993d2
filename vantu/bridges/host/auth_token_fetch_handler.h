#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuFetchAuthToken": asks the host for a token. The host gets a copy
/// of the page's "data" whose "h5_uaid_caller" is the calling screen's
/// unique app id (or is removed when the screen has none), so a page can
/// never name another caller.
///
/// Answers twice when the host's value is a dictionary with string keys:
/// first that dictionary as it stands, then (whatever the value) either
/// {"success": true, "data": value} or the flat error. Pages rely on both.
class AuthTokenFetchHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuFetchAuthToken";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
