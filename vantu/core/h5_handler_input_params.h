#pragma once
// The record of one bridge call: the calling screen, the page's arguments
// and the way back to the page.

#include <functional>
#include <memory>

#include "vantu/platform/view_controller.h"
#include "vantu/value/value.h"

namespace vantu {

/// Receives one answer for the page. Bridges call it 0, 1 or 2 times as
/// each bridge's behaviour says.
using H5Callback = std::function<void(const Value& answer)>;

struct H5HandlerInputParams {
  std::shared_ptr<ViewController> viewController;  // may be absent
  Dict data;                                       // the page's arguments as sent
  H5Callback callback;

  H5HandlerInputParams(std::shared_ptr<ViewController> viewController, Dict data, H5Callback callback)
      : viewController(std::move(viewController)), data(std::move(data)), callback(std::move(callback)) {}
};

}  // namespace vantu
