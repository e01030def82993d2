#include "notice_bridge.h"

#include "vantu/core/h5_answers.h"
#include "vantu/core/view_controller_context.h"

namespace host_app {

void NoticeBridge::handleWith(vantu::H5HandlerInputParams params) {
  trackData(kBridgeName, params);  // reported to the delegate's analytics, as every bridge is
  auto text = params.data.getString("text");
  if (!text || text->empty()) return vantu::answerFailure(params.callback, "hostShowNotice needs a text");
  std::string appId;
  if (params.viewController) appId = vantu::getUniqueAppIdentifierRecursively(*params.viewController).value_or("");
  show_(appId, *text);
  params.callback(vantu::Dict{{"data", vantu::Dict{{"shown", true}, {"app", appId}}}});
}

}  // namespace host_app
