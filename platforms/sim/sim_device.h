#pragma once
// The simulated device: a platform bundle on one manual run loop, a UI
// tree of named screens, scripted host delegates and device facts, all
// built from a scenario (see docs/scenario.md). Tests and the headless
// runner drive it; nothing in it sleeps.

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platforms/sim/sim_authentication.h"
#include "platforms/curl/curl_transport.h"
#include "platforms/sim/sim_authorization.h"
#include "platforms/sim/sim_dispatch.h"
#include "platforms/sim/sim_file_system.h"
#include "platforms/sim/sim_notification_center.h"
#include "platforms/sim/sim_photo_library.h"
#include "platforms/sim/sim_pickers.h"
#include "platforms/sim/sim_reachability.h"
#include "platforms/sim/sim_images.h"
#include "platforms/sim/sim_location.h"
#include "platforms/sim/sim_ui.h"
#include "vantu/platform/platform.h"
#include "vantu/value/value.h"

namespace vantu::sim {

class SimHostDelegate;

class SimConsole : public Console {
 public:
  std::vector<std::string> take() { return std::exchange(lines_, {}); }

 protected:
  void doPrintLine(std::string_view line) override { lines_.emplace_back(line); }

 private:
  std::vector<std::string> lines_;
};

class SimDeviceFacts : public DeviceFacts {
 public:
  std::optional<Dict> info;
  std::string model = "iPhone14,5";
  std::string osVersionText = "17.5";
  std::optional<std::string> language = "en";
  std::optional<std::string> radioTechnology = "CTRadioAccessTechnologyLTE";
  bool onDevice = true;
  /// The wall clock at virtual time zero; it moves with the virtual clock.
  double clockAtStart = 1700000000.125;
  const SimDispatch* dispatch = nullptr;

 protected:
  std::optional<Dict> doBundleInfo() const override { return info; }
  std::string doModelIdentifier() const override { return model; }
  std::string doSystemVersion() const override { return osVersionText; }
  std::optional<std::string> doLanguageCode() const override { return language; }
  std::optional<std::string> doRadioAccessTechnology() const override { return radioTechnology; }
  bool doIsRunningOnDevice() const override { return onDevice; }
  double doSecondsSince1970() const override {
    return clockAtStart + (dispatch ? std::chrono::duration<double>(dispatch->now()).count() : 0.0);
  }
};

class SimDevice {
 public:
  /// Keeps its stored values (the preferences store) in a fresh temporary
  /// directory that is removed with the device.
  SimDevice();
  /// Keeps its stored values in `dataDirectory`, which it leaves in place.
  explicit SimDevice(std::filesystem::path dataDirectory);
  ~SimDevice();
  SimDevice(const SimDevice&) = delete;
  SimDevice& operator=(const SimDevice&) = delete;

  /// Applies a scenario (or a fragment of one, for later changes). Returns
  /// the reason when it is malformed; what was applied before the bad
  /// section stays applied.
  std::optional<std::string> apply(const Value& scenario);

  /// Installs this device as the process's platform, with the library's
  /// process-wide instances reset to their fresh state.
  void install();
  const std::shared_ptr<Platform>& platformBundle() const { return platform_; }

  SimDispatch& dispatch() { return *dispatch_; }
  SimApplication& application() { return *application_; }
  SimDeviceFacts& facts() { return *facts_; }
  SimReachability& reachability() { return *reachability_; }
  SimNotificationCenter& notifications() { return *notifications_; }
  SimImageStore& images() { return *images_; }
  SimAuthorization& authorization() { return *authorization_; }
  SimLocationServices& locationServices() { return *locationServices_; }
  SimGeocoder& geocoder() { return *geocoder_; }
  SimDeviceOwnerAuthentication& deviceOwnerAuthentication() { return *deviceOwnerAuthentication_; }
  SimPickers& pickers() { return *pickers_; }
  /// Where the preferences store (platforms/store) keeps its database.
  /// Real HTTP transfers (libcurl); each holds outstanding work on the
  /// loop until it has reported, so `settle` waits for it.
  curl::CurlTransport& transport() { return *transport_; }
  SimPhotoLibrary& photoLibrary() { return *photoLibrary_; }
  SimFileSystem& fileSystem() { return *fileSystem_; }
  /// Where the preferences store (platforms/store) keeps its database, the
  /// documents directory ("Documents") and the photo library ("PhotoLibrary").
  const std::filesystem::path& dataDirectory() const { return dataDirectory_; }
  const std::shared_ptr<EffectLog>& effects() const { return effects_; }

  // Screens by name.
  std::shared_ptr<ViewController> screen(std::string_view name) const;
  void addScreen(const std::string& name, std::shared_ptr<ViewController> vc);
  bool hasScreen(std::string_view name) const;
  /// Every named screen, in name order.
  std::vector<std::shared_ptr<ViewController>> screens() const;
  void clearScreens();
  std::optional<std::string> defaultScreen;
  /// The first view named `name` in the key window or a screen's loaded
  /// root view (depth first); none if there is no such view.
  std::shared_ptr<View> findView(std::string_view name) const;

  // Scripted objects by name (host delegates, plain objects).
  std::shared_ptr<Object> object(std::string_view name) const;
  void addObject(const std::string& name, std::shared_ptr<Object> object);
  std::shared_ptr<SimHostDelegate> makeDelegate(const std::string& name);

  /// One host delegate call as the runner reports it.
  void recordDelegateCall(std::string_view delegate, std::string_view operation, Dict arguments);
  std::vector<Dict> takeDelegateCalls() { return std::exchange(delegateCalls_, {}); }
  std::vector<std::string> takePrintedLines() { return console_->take(); }

 private:
  std::shared_ptr<SimDispatch> dispatch_;
  std::shared_ptr<EffectLog> effects_;
  std::shared_ptr<SimApplication> application_;
  std::shared_ptr<SimConsole> console_;
  std::shared_ptr<SimDeviceFacts> facts_;
  std::shared_ptr<SimReachability> reachability_;
  std::shared_ptr<SimNotificationCenter> notifications_;
  std::shared_ptr<SimImageStore> images_;
  std::shared_ptr<SimAuthorization> authorization_;
  std::shared_ptr<SimLocationServices> locationServices_;
  std::shared_ptr<SimGeocoder> geocoder_;
  std::shared_ptr<SimDeviceOwnerAuthentication> deviceOwnerAuthentication_;
  std::shared_ptr<curl::CurlTransport> transport_;
  std::shared_ptr<SimPhotoLibrary> photoLibrary_;
  std::shared_ptr<SimFileSystem> fileSystem_;
  std::shared_ptr<SimPickers> pickers_;
  std::shared_ptr<Platform> platform_;
  std::filesystem::path dataDirectory_;
  bool ownsDataDirectory_ = false;
  std::map<std::string, std::shared_ptr<ViewController>, std::less<>> screens_;
  std::map<std::string, std::shared_ptr<Object>, std::less<>> objects_;
  std::vector<Dict> delegateCalls_;
};

}  // namespace vantu::sim
