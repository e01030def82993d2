#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuChangeWebSetting": applies the page's whole `data` as web-view
/// flags to the web view of the calling screen (a direct subview of its
/// root view). Answers the bare boolean true, also when single flags were
/// rejected (those are only printed); flat errors when there is no screen,
/// no web view, or a key that is not a string.
class WebViewSettingsCustomizationHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuChangeWebSetting";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
