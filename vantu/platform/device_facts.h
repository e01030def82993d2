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
  std::optional<Dict> bundleInfo() const { return doBundleInfo(); }

  /// The hardware model identifier: the machine field of the system's
  /// `uname` record, up to its first zero byte (e.g. "iPhone14,5").
  std::string modelIdentifier() const { return doModelIdentifier(); }
  /// The operating system's version text (e.g. "17.5").
  std::string systemVersion() const { return doSystemVersion(); }
  /// The language code of the current locale (e.g. "en"), if it has one.
  std::optional<std::string> languageCode() const { return doLanguageCode(); }
  /// The telephony radio access technology the cellular radio reports now
  /// (e.g. "CTRadioAccessTechnologyLTE"), if any.
  std::optional<std::string> radioAccessTechnology() const { return doRadioAccessTechnology(); }
  /// False only when the library runs in a simulator rather than on a
  /// device (reachability descriptions show it).
  bool isRunningOnDevice() const { return doIsRunningOnDevice(); }
  /// The device's clock: seconds since 1970-01-01 00:00 UTC.
  double secondsSince1970() const { return doSecondsSince1970(); }

 protected:
  virtual std::optional<Dict> doBundleInfo() const = 0;
  virtual std::string doModelIdentifier() const = 0;
  virtual std::string doSystemVersion() const = 0;
  virtual std::optional<std::string> doLanguageCode() const = 0;
  virtual std::optional<std::string> doRadioAccessTechnology() const = 0;
  virtual bool doIsRunningOnDevice() const { return true; }
  virtual double doSecondsSince1970() const {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
  }
};

}  // namespace vantu
