#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuChangeStatusBarColor": puts a strip of "color" (hex text) behind the
/// status bar, replacing an earlier one. Answers the bare boolean true.
class StatusbarBackgroundColorChangeHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuChangeStatusBarColor";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
