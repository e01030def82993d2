#pragma once
// What the host-delegated bridges share: finding the host delegate attached
// to the calling screen, answering the page when there is none. The answers
// they build from the host's (success, error, value) are in
// vantu/core/h5_answers.h.

#include <memory>
#include <string_view>

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_handler_input_params.h"
#include "vantu/core/vantu_h5_delegate.h"

namespace vantu::host {

/// The bad-argument message of the deep-link and navigate bridges.
inline constexpr std::string_view kInvalidParameter = "invalid parameter!";

/// The two messages a bridge answers when it cannot reach the host.
struct ContextMessages {
  std::string_view noViewController;
  std::string_view noDelegate;
};

inline constexpr ContextMessages kContextMessages{"Unable to get current H5 Context",
                                                  "Unable to get current H5 Context Listeners"};

/// The VantuH5Delegate attached to the calling screen (self, parent or
/// grandparent). Without a calling screen, or when the attached object is
/// missing or is not a VantuH5Delegate, the page is answered with the
/// matching message and nullptr is returned. The environment's delegate is
/// never consulted here.
std::shared_ptr<VantuH5Delegate> hostDelegateFor(const H5HandlerInputParams& params,
                                                 const ContextMessages& messages = kContextMessages);

}  // namespace vantu::host
