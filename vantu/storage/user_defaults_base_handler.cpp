#include "vantu/storage/user_defaults_base_handler.h"

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/core/view_controller_context.h"
#include "vantu/platform/platform.h"
#include "vantu/storage/secure_string_hasher.h"

namespace vantu {

std::optional<std::string> UserDefaultsBaseHandler::sandboxDomainFor(const H5HandlerInputParams& params) {
  if (!params.viewController) {
    answerFailure(params.callback, "VH5FilePickerHandler: Failed to bind params.viewController!");
    return std::nullopt;
  }
  auto uAId = getUniqueAppIdentifierRecursively(*params.viewController);
  if (!uAId) {
    answerFailure(params.callback, "Failed to obtain uAId!");
    return std::nullopt;
  }
  return sandboxDomainName(*uAId);
}

void UserDefaultsBaseHandler::answerOnMain(const H5Callback& callback, Value answer) {
  platform().dispatch->main()->async([callback, answer = std::move(answer)] { callback(answer); });
}

}  // namespace vantu
