#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuShareText": opens the share sheet with the page's "text" (a
/// required string) and answers {"data": {"success": true}} once the sheet
/// is presented (see ShareUtil).
class ShareTextHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuShareText";
  static constexpr std::string_view kInvalidText = "SharePostHandler: Invalid text parameter!";
  static constexpr std::string_view kNoViewController = "Unable to get current H5 Context";

  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
