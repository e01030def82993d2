#include "vantu/bridges/host/navigate_to_handler.h"

#include "vantu/bridges/host/host_delegate_lookup.h"
#include "vantu/core/h5_answers.h"

namespace vantu {
namespace {

struct NavigationRequest {
  std::string to;
  std::optional<Dict> data;
  bool clearBackStack = false;
  bool finishThis = false;
};

// An optional argument is usable when it is missing, null, or of its type.
bool readOptionalFlag(const Dict& args, std::string_view key, bool& flag) {
  const Value* value = args.find(key);
  if (!value || value->isNull()) return true;
  if (!value->isBool()) return false;
  flag = *value->asBool();
  return true;
}

std::optional<NavigationRequest> bind(const Dict& args) {
  NavigationRequest request;
  auto to = args.getString("navigateTo");
  if (!to) return std::nullopt;
  request.to = std::move(*to);
  if (const Value* data = args.find("data"); data && !data->isNull()) {
    const Dict* dict = data->asDict();
    if (!dict || !dict->hasOnlyStringKeys()) return std::nullopt;
    request.data = *dict;
  }
  if (!readOptionalFlag(args, "clearBackStack", request.clearBackStack)) return std::nullopt;
  if (!readOptionalFlag(args, "finishThis", request.finishThis)) return std::nullopt;
  return request;
}

}  // namespace

void NavigateToHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto request = bind(params.data);
  if (!request) return answerFailure(params.callback, host::kInvalidParameter);
  auto delegate = host::hostDelegateFor(params);
  if (!delegate) return;
  delegate->navigate(std::move(request->to), std::move(request->data), request->clearBackStack, request->finishThis,
                     answerSuccessWithData(params.callback, "Failed Navigation result!"));
}

}  // namespace vantu
