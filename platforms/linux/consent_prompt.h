#pragma once
// The question put to the user when an app first asks for a protected
// resource ("Allow “Demo” to use your camera?"). A desktop shell supplies
// it (the GTK container shows a dialog); headless hosts have none.

#include <functional>

#include "vantu/platform/authorization.h"

namespace vantu::linux_platform {

class ConsentPrompt {
 public:
  /// True when the user allowed access (for the location: while the app is
  /// in use), false when they refused or dismissed the question.
  using Answer = std::function<void(bool allowed)>;

  virtual ~ConsentPrompt() = default;

  /// Shows the question for `resource` without waiting for it and calls
  /// `answer` once, on the main queue, when the user has answered. Called
  /// on the main thread, never twice for a resource whose question is up.
  void ask(ProtectedResource resource, Answer answer) { show(resource, std::move(answer)); }

 protected:
  virtual void show(ProtectedResource resource, Answer answer) = 0;
};

}  // namespace vantu::linux_platform
