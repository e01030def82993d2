#pragma once
// The application model of the Linux platform: the plain model, plus the
// host's settings page when a shell provides one.

#include <functional>

#include "vantu/platform/application.h"

namespace vantu::linux_platform {

class LinuxApplication : public Application {
 public:
  explicit LinuxApplication(std::function<void()> settingsPage = {}) : settingsPage_(std::move(settingsPage)) {}

 protected:
  void doOpenSettingsPage() override {
    if (settingsPage_) settingsPage_();
  }

 private:
  std::function<void()> settingsPage_;
};

}  // namespace vantu::linux_platform
