#include "vantu/bridges/host/host_delegate_lookup.h"

#include "vantu/core/h5_answers.h"
#include "vantu/core/view_controller_context.h"

namespace vantu::host {

std::shared_ptr<VantuH5Delegate> hostDelegateFor(const H5HandlerInputParams& params, const ContextMessages& messages) {
  if (!params.viewController) {
    answerFailure(params.callback, messages.noViewController);
    return nullptr;
  }
  auto delegate = std::dynamic_pointer_cast<VantuH5Delegate>(getVH5ViewControllerDelegateRecursively(*params.viewController));
  if (!delegate) answerFailure(params.callback, messages.noDelegate);
  return delegate;
}

}  // namespace vantu::host
