#pragma once
// Base of every bridge handler. A call enters through `handleWith`; the
// handler reports it with `trackData` before looking at any argument, then
// binds, checks, works and answers through the params' callback.

#include <memory>
#include <string_view>

#include "vantu/core/h5_handler_input_params.h"
#include "vantu/platform/object.h"

namespace vantu {

class H5BaseHandler : public Object, public std::enable_shared_from_this<H5BaseHandler> {
 public:
  H5BaseHandler() = default;

  /// The base answers nothing; every bridge overrides it.
  virtual void handleWith(H5HandlerInputParams params);

  /// Sends one "Bridge Analytics" event to the host delegate attached to the
  /// calling screen (self, parent or grandparent). Fire and forget: no view
  /// controller, no attached object, or one that is not a VantuH5Delegate
  /// means nothing is reported.
  void trackData(std::string_view bridgeName, const H5HandlerInputParams& params);

 protected:
  /// A weak reference to this handler as its concrete type, for completions
  /// that must answer nothing once the handler is gone.
  template <class Self>
  std::weak_ptr<Self> weakSelf(Self* self) {
    return std::static_pointer_cast<Self>(self->shared_from_this());
  }
};

}  // namespace vantu
