#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuRenderAboveHomeIndicator": keeps the web view clear of the bottom
/// safe area ("value" true) or not. Answers the bare boolean true.
class RendersAboveHomeIndicatorHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuRenderAboveHomeIndicator";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
