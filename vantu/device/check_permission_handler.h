#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuCheckPermission": the current status of one or more permissions
/// ("permission": words separated by commas), without asking the user.
/// Answers {"success": true, "data": {word: status}}; failures are the flat
/// {"error": 2, "message": text}.
class CheckPermissionHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuCheckPermission";
  static constexpr std::string_view kNoPermission = "Invalid parameters(could not bind permission in the passed data)!";
  static constexpr std::string_view kEmptyPermission = "Invalid parameters(permission string empty)!";
  static constexpr std::string_view kUnhandledPermission = "Unhandled permission: ";

  void handleWith(H5HandlerInputParams params) override;

  /// The words of a "permission" text: lower-cased (ASCII letters), every
  /// space removed, split at each comma. Empty pieces are kept, so "a," is
  /// "a" and "".
  static std::vector<std::string> permissionWords(std::string_view text);
};

}  // namespace vantu
