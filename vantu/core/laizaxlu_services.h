#pragma once
// The environment operations whose work belongs above core: the sandboxed
// key-value store (vantu/storage) and the keyboard-offset fixer
// (vantu/container). Core states what it needs here; the runtime connects
// the implementation (vantu/runtime/environment_services.h), so that the
// core library links on its own and the dependency is written down.

#include <optional>
#include <string>
#include <string_view>

#include "vantu/value/value.h"

namespace vantu {

class ViewController;

class LaizaxluServices {
 public:
  virtual ~LaizaxluServices() = default;

  /// Queues the clearing of every app's stored data but the exempted ids'.
  virtual void clearSandbox(std::optional<Dict> exemptedUniqueAppIdMap) = 0;
  /// Queues the one-time move of unhashed domains to hashed ones.
  virtual void performSandboxMigration() = 0;
  /// The hashed storage name of `appId`.
  virtual std::string sandboxedFileName(std::string_view appId) const = 0;
  /// Attaches a keyboard-offset fixer for the screen's web view, if any.
  virtual void attachKeyboardOffsetFixer(ViewController& viewController) = 0;
};

}  // namespace vantu
