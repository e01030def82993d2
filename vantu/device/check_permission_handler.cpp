#include "vantu/device/check_permission_handler.h"

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/core/url.h"
#include "vantu/device/permission_handler_factory.h"

namespace vantu {

std::vector<std::string> CheckPermissionHandler::permissionWords(std::string_view text) {
  std::vector<std::string> words(1);
  for (char c : asciiLowercased(text)) {
    if (c == ',') {
      words.emplace_back();
    } else if (c != ' ') {
      words.back().push_back(c);
    }
  }
  return words;
}

void CheckPermissionHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto permission = params.data.getString("permission");
  if (!permission) return answerFailure(params.callback, kNoPermission);
  if (permission->empty()) return answerFailure(params.callback, kEmptyPermission);

  Dict result;
  for (auto& word : permissionWords(*permission)) {
    auto handler = PermissionHandlerFactory::shared().handler(word);
    if (!handler) return answerFailure(params.callback, std::string(kUnhandledPermission) + word);
    handler->getPermissionStatus([&result, &word](std::int64_t status) { result.set(word, status); });
  }
  params.callback(Dict{{"success", true}, {"data", std::move(result)}});
}

}  // namespace vantu
