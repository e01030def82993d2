#pragma once
// The record of one bridge call: the calling screen, the page's arguments
// and the way back to the page.

#include <concepts>
#include <functional>
#include <type_traits>
#include <memory>

#include "vantu/platform/transfer_progress.h"
#include "vantu/platform/view_controller.h"
#include "vantu/value/value.h"

namespace vantu {

/// Receives one answer for the page. Bridges call it 0, 1 or 2 times as
/// each bridge's behaviour says. Never empty: one made from nothing (or
/// from an empty function) drops its answers, so handlers call it without
/// checking first.
class H5Callback {
 public:
  H5Callback() = default;
  template <class F>
    requires std::invocable<F&, const Value&> && (!std::same_as<std::remove_cvref_t<F>, H5Callback>)
  H5Callback(F function)  // NOLINT(google-explicit-constructor): any callable is a callback
      : function_(std::move(function)) {}

  void operator()(const Value& answer) const {
    if (function_) function_(answer);
  }

 private:
  std::function<void(const Value& answer)> function_;
};

/// Receives the progress of a call's transfer, for the page's progress
/// listener. Like H5Callback, never empty: one made from nothing drops the
/// reports. Call it on the main thread; the page end throttles the reports.
class H5Progress {
 public:
  H5Progress() = default;
  template <class F>
    requires std::invocable<F&, const TransferProgress&> && (!std::same_as<std::remove_cvref_t<F>, H5Progress>)
  H5Progress(F function)  // NOLINT(google-explicit-constructor): any callable is a progress sink
      : function_(std::move(function)) {}

  void operator()(const TransferProgress& progress) const {
    if (function_) function_(progress);
  }

 private:
  std::function<void(const TransferProgress&)> function_;
};

struct H5HandlerInputParams {
  std::shared_ptr<ViewController> viewController;  // may be absent
  Dict data;                                       // the page's arguments as sent
  H5Callback callback;
  H5Progress progress;  // for bridges that report how far they are

  H5HandlerInputParams(std::shared_ptr<ViewController> viewController, Dict data, H5Callback callback,
                       H5Progress progress = {})
      : viewController(std::move(viewController)),
        data(std::move(data)),
        callback(std::move(callback)),
        progress(std::move(progress)) {}
};

}  // namespace vantu
