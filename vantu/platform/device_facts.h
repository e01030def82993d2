#pragma once
// Facts of the device and of the host application bundle.

#include <chrono>
#include <optional>
#include <string>

#include "vantu/value/value.h"

namespace vantu {

class DeviceFacts {
 public:
  virtual ~DeviceFacts() = default;

  /// The host application's main-bundle information dictionary, if any.
  std::optional<Dict> bundleInfo() const { return mainBundleInfo(); }

  /// The hardware model identifier: the machine field of the system's
  /// `uname` record, up to its first zero byte (e.g. "iPhone14,5").
  std::string modelIdentifier() const { return hardwareMachine(); }
  /// The operating system's version text (e.g. "17.5").
  std::string systemVersion() const { return osVersion(); }
  /// The language code of the current locale (e.g. "en"), if it has one.
  std::optional<std::string> languageCode() const { return localeLanguageCode(); }
  /// The telephony radio access technology the cellular radio reports now
  /// (e.g. "CTRadioAccessTechnologyLTE"), if any.
  std::optional<std::string> radioAccessTechnology() const { return currentRadioAccessTechnology(); }
  /// False only when the library runs in a simulator rather than on a
  /// device (reachability descriptions show it).
  bool isRunningOnDevice() const { return runningOnDevice(); }
  /// The device's clock: seconds since 1970-01-01 00:00 UTC.
  double secondsSince1970() const { return currentTimeSince1970(); }

 protected:
  virtual std::optional<Dict> mainBundleInfo() const = 0;
  virtual std::string hardwareMachine() const = 0;
  virtual std::string osVersion() const = 0;
  virtual std::optional<std::string> localeLanguageCode() const = 0;
  virtual std::optional<std::string> currentRadioAccessTechnology() const = 0;
  virtual bool runningOnDevice() const { return true; }
  virtual double currentTimeSince1970() const {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
  }
};

}  // namespace vantu
