#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuShowTitleBar": shows ("value" true) or hides the calling screen's
/// navigation bar through the container customizer. Answers the bare
/// boolean true once the customizer returns, whether or not it could apply
/// the flag (its problems are only printed).
class TitleBarVisibilityHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuShowTitleBar";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
