#pragma once
// What the host-delegated bridges share: finding the host delegate attached
// to the calling screen (answering the page when there is none) and the
// answers they build from the delegate handler's (success, error, value).
//
// Every failure of these bridges is a flat error with code 2; the host's
// own error object never reaches the page.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vantu/core/h5_handler_input_params.h"
#include "vantu/core/vantu_h5_delegate.h"

namespace vantu::host {

inline constexpr std::int64_t kFailureCode = 2;

/// The bad-argument message of the deep-link and navigate bridges.
inline constexpr std::string_view kInvalidParameter = "invalid parameter!";

/// The two messages a bridge answers when it cannot reach the host.
struct ContextMessages {
  std::string_view noViewController;
  std::string_view noDelegate;
};

inline constexpr ContextMessages kContextMessages{"Unable to get current H5 Context",
                                                  "Unable to get current H5 Context Listeners"};

/// Answers the page once with {"error": 2, "message": message}.
void answerFailure(const H5Callback& callback, std::string_view message);

/// The VantuH5Delegate attached to the calling screen (self, parent or
/// grandparent). Without a calling screen, or when the attached object is
/// missing or is not a VantuH5Delegate, the page is answered with the
/// matching message and nullptr is returned. The environment's delegate is
/// never consulted here.
std::shared_ptr<VantuH5Delegate> hostDelegateFor(const H5HandlerInputParams& params,
                                                 const ContextMessages& messages = kContextMessages);

/// {"success": true, "data": value}
Dict successWithData(Value value);

/// A delegate handler that answers {"data": {"success": true}} on success
/// and the flat error with `failureMessage` otherwise.
DelegateHandler answerSuccessFlag(H5Callback callback, std::string failureMessage);

/// A delegate handler that answers {"success": true, "data": the host's
/// value} on success (`whenAbsent` standing in when the host gave no value,
/// null if not given) and the flat error with `failureMessage` otherwise.
DelegateHandler answerSuccessWithData(H5Callback callback, std::string failureMessage,
                                      Value whenAbsent = Value());

}  // namespace vantu::host
