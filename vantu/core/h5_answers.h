#pragma once
// The ways a handler answers the page, written once: a flat failure, and
// the delegate handlers that turn a host's (success, error, value) into an
// answer. The host's own error object never reaches the page.

#include <string>
#include <string_view>

#include "vantu/core/h5_handler_input_params.h"
#include "vantu/core/vantu_h5_delegate.h"
#include "vantu/value/value.h"

namespace vantu {

/// Answers {"error": 2, "message": message}.
void answerFailure(const H5Callback& callback, std::string_view message);

/// A delegate handler that answers {"data": {"success": true}} on success
/// and the flat failure with `failureMessage` otherwise.
DelegateHandler answerSuccessFlag(H5Callback callback, std::string failureMessage);

/// A delegate handler that answers {"success": true, "data": the host's
/// value} on success (`whenAbsent` standing in when the host gave no value,
/// null if not given) and the flat failure with `failureMessage` otherwise.
DelegateHandler answerSuccessWithData(H5Callback callback, std::string failureMessage, Value whenAbsent = Value());

}  // namespace vantu
