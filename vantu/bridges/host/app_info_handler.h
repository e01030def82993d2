#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuGetAppInfo": the app and library versions, {"appVersion",
/// "h5Version"}, plus whatever the host adds.
///
/// When the calling screen (or its parent or grandparent) has a host
/// delegate attached, its `getAppInfo` is asked. Only a successful answer
/// without error whose value is a dictionary adds it under "app_info_pt",
/// and only then is the answer wrapped as {"data": info}. Every other case
/// (failure, no dictionary, no screen, no delegate, an attached object that
/// is not a delegate) answers the bare two-key dictionary. Pages rely on
/// that difference to tell whether the host supplied extra information.
class AppInfoHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuGetAppInfo";
  static constexpr std::string_view kHostInfoKey = "app_info_pt";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
