#include "vantu/container/vantu_push_window_handler.h"

#include "vantu/container/push_window_support.h"
#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"

namespace vantu {

void VantuPushWindowHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto fail = [&params](std::string_view message) { answerFailure(params.callback, message); };
  if (!params.viewController) return fail("Unable to get current H5 Context");
  auto url = params.data.getString("url");
  if (!url) return fail("invalid parameters: no url could be bound in data");
  // A plain substring test, as pages have always been checked.
  if (url->find("https") == std::string::npos) return fail("VantuPushWindow only supports https urls.");
  auto startup = push_window::bindStartupParams(params.data);
  if (!startup) return fail("invalid parameters: no params or param could be bound in data");
  auto navigationController = push_window::navigationControllerFor(*params.viewController);
  if (!navigationController) return fail("Unable to get nav controller");
  auto appId = params.data.getString("appId");
  if (!appId) return fail("invalid parameters: no uniqueId could be bound in data");
  if (!push_window::pushFromProvider(params.viewController, *navigationController, *url, *startup, *appId)) {
    return fail(push_window::kNoProviderResult);
  }
  // Pushed: the page gets no answer.
}

}  // namespace vantu
