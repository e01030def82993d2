#pragma once

#include <string_view>

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuRequestPermission": asks the user for one permission ("permission",
/// one word), or offers the settings page when it was refused before.
/// Answers {"data": {word: 1 | 0}, "success": true, "authorizedStatus":
/// bool}; failures are the flat {"error": 2, "message": text}. The answer
/// comes from wherever the platform answers; a handler released meanwhile
/// answers nothing.
class RequestPermissionHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuRequestPermission";
  static constexpr std::string_view kNoPermission = "Invalid parameters(could not bind permission in the passed data)!";
  static constexpr std::string_view kEmptyPermission = "Invalid parameters(permission string empty)!";
  static constexpr std::string_view kNoViewController = "Invalid parameters(could not find view controller)!";
  static constexpr std::string_view kUnhandledPermission = "Unhandled permission";

  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
