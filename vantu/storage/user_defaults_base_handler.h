#pragma once
// Base of the three storage bridges. They answer with flat errors, code 2,
// and reach the page's own store only: the domain comes from the calling
// screen's unique app id, never from the page's arguments.

#include <optional>
#include <string>

#include "vantu/core/h5_base_handler.h"

namespace vantu {

class UserDefaultsBaseHandler : public H5BaseHandler {
 protected:
  /// The sandbox domain of the calling screen's app (screen, parent or
  /// grandparent). Answers the page with "VH5FilePickerHandler: Failed to
  /// bind params.viewController!" (no screen; the other handler's name is
  /// the text pages receive) or "Failed to obtain uAId!" and gives nullopt.
  static std::optional<std::string> sandboxDomainFor(const H5HandlerInputParams& params);
  /// Calls `callback` with `answer` on the main queue.
  static void answerOnMain(const H5Callback& callback, Value answer);
};

}  // namespace vantu
