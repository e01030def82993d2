#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuResetStatusBarBackgroundColor": removes the status-bar strip (the
/// flag it sends is spelled "vantuResetStatusbarBackgroundColor"). Answers
/// the bare boolean true. Without a calling screen it answers with the
/// title-bar bridge's message, as pages have always seen it.
class ResetStatusbarBackgroundColorHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuResetStatusBarBackgroundColor";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
