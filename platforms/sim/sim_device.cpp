#include "platforms/sim/sim_device.h"

#include <unistd.h>

#include <cstdint>
#include <random>
#include <string>

#include "platforms/common/pixbuf_image_decoder.h"
#include "platforms/sim/scenario.h"
#include "platforms/sim/sim_host_delegate.h"
#include "platforms/store/sqlite_preferences.h"
#include "vantu/runtime/shared_state.h"

namespace vantu::sim {

// The reference phone: a 390 x 844 point screen with a 47-point status bar
// and a 34-point home indicator area.
constexpr Rect kScreenBounds{0, 0, 390, 844};
constexpr Rect kStatusBarFrame{0, 0, 390, 47};
constexpr EdgeInsets kWindowSafeArea{47, 0, 34, 0};

namespace {

// A fresh, unguessable path under the temporary directory. It is created
// only when the preferences store first opens, so devices that never store
// anything leave nothing behind even when a test ends the process early.
std::filesystem::path makeTemporaryDataDirectory() {
  std::random_device entropy;
  std::uint64_t token = (static_cast<std::uint64_t>(entropy()) << 32) ^ entropy();
  return std::filesystem::temp_directory_path() /
         ("vantu-sim-" + std::to_string(getpid()) + "-" + std::to_string(token));
}

}  // namespace

SimDevice::SimDevice() : SimDevice(makeTemporaryDataDirectory()) { ownsDataDirectory_ = true; }

SimDevice::SimDevice(std::filesystem::path dataDirectory)
    : dispatch_(std::make_shared<SimDispatch>()),
      effects_(std::make_shared<EffectLog>()),
      application_(std::make_shared<SimApplication>(effects_)),
      console_(std::make_shared<SimConsole>()),
      facts_(std::make_shared<SimDeviceFacts>()),
      reachability_(std::make_shared<SimReachability>()),
      notifications_(std::make_shared<SimNotificationCenter>()),
      images_(std::make_shared<SimImageStore>()),
      authorization_(std::make_shared<SimAuthorization>(dispatch_, effects_)),
      locationServices_(std::make_shared<SimLocationServices>(dispatch_, authorization_)),
      geocoder_(std::make_shared<SimGeocoder>(dispatch_, effects_)),
      deviceOwnerAuthentication_(std::make_shared<SimDeviceOwnerAuthentication>(dispatch_, effects_)),
      pickers_(std::make_shared<SimPickers>(dispatch_)),
      platform_(std::make_shared<Platform>()) {
  platform_->dispatch = dispatch_;
  platform_->application = application_;
  platform_->console = console_;
  platform_->device = facts_;
  platform_->reachability = reachability_;
  platform_->notificationCenter = notifications_;
  platform_->images = images_;
  platform_->authorization = authorization_;
  platform_->locationServices = locationServices_;
  platform_->geocoder = geocoder_;
  platform_->deviceOwnerAuthentication = deviceOwnerAuthentication_;
  facts_->dispatch = dispatch_.get();
  effects_->setPresentationObserver([weak = std::weak_ptr<SimPickers>(pickers_)](const auto& controller) {
    if (auto pickers = weak.lock()) pickers->presented(controller);
  });
  dataDirectory_ = std::move(dataDirectory);
  transport_ = std::make_shared<curl::CurlTransport>(dispatch_);
  photoLibrary_ = std::make_shared<SimPhotoLibrary>(dispatch_, effects_, dataDirectory_ / "PhotoLibrary");
  platform_->httpTransport = transport_;
  platform_->photoLibrary = photoLibrary_;
  fileSystem_ = std::make_shared<SimFileSystem>();
  platform_->fileSystem = fileSystem_;
  platform_->imageDecoder = std::make_shared<PixbufImageDecoder>();
  platform_->documentsDirectory = dataDirectory_ / "Documents";
  platform_->preferences = std::make_shared<store::SqlitePreferences>(store::SqlitePreferencesOptions{dataDirectory_, {}});

  auto window = std::make_shared<SimWindow>(effects_, kScreenBounds);
  window->setName("keyWindow");
  window->setSafeAreaInsets(kWindowSafeArea);
  application_->setKeyWindow(window);
  application_->setMainScreenBounds(kScreenBounds);
  application_->setStatusBarFrame(kStatusBarFrame);
}

SimDevice::~SimDevice() {
  if (ownsDataDirectory_) {
    std::error_code ignored;
    std::filesystem::remove_all(dataDirectory_, ignored);
  }
  // Screens may hold completions that refer back to this device.
  screens_.clear();
  objects_.clear();
}

std::optional<std::string> SimDevice::apply(const Value& scenario) {
  auto error = applyScenario(*this, scenario);
  // Building the world is not something the library did.
  effects_->take();
  return error;
}

void SimDevice::install() {
  resetSharedStateForTesting();
  installPlatform(platform_);
}

std::shared_ptr<ViewController> SimDevice::screen(std::string_view name) const {
  auto it = screens_.find(name);
  return it == screens_.end() ? nullptr : it->second;
}

void SimDevice::addScreen(const std::string& name, std::shared_ptr<ViewController> vc) { screens_[name] = std::move(vc); }

bool SimDevice::hasScreen(std::string_view name) const { return screens_.find(name) != screens_.end(); }

std::vector<std::shared_ptr<ViewController>> SimDevice::screens() const {
  std::vector<std::shared_ptr<ViewController>> all;
  all.reserve(screens_.size());
  for (const auto& [name, vc] : screens_) all.push_back(vc);
  return all;
}

void SimDevice::clearScreens() {
  screens_.clear();
  if (auto window = application_->keyWindow()) window->setRootViewController(nullptr);
}

namespace {

std::shared_ptr<View> findNamed(const std::shared_ptr<View>& view, std::string_view name) {
  if (!view) return nullptr;
  if (view->name() == name) return view;
  for (const auto& subview : view->subviews()) {
    if (auto found = findNamed(subview, name)) return found;
  }
  return nullptr;
}

}  // namespace

std::shared_ptr<View> SimDevice::findView(std::string_view name) const {
  if (auto found = findNamed(application_->keyWindow(), name)) return found;
  for (const auto& [screenName, vc] : screens_) {
    if (auto found = findNamed(vc->viewIfLoaded(), name)) return found;
  }
  return nullptr;
}

std::shared_ptr<Object> SimDevice::object(std::string_view name) const {
  auto it = objects_.find(name);
  return it == objects_.end() ? nullptr : it->second;
}

void SimDevice::addObject(const std::string& name, std::shared_ptr<Object> object) { objects_[name] = std::move(object); }

std::shared_ptr<SimHostDelegate> SimDevice::makeDelegate(const std::string& name) {
  auto delegate = std::make_shared<SimHostDelegate>(
      name, dispatch_, [this](std::string_view delegate, std::string_view operation, Dict arguments) {
        recordDelegateCall(delegate, operation, std::move(arguments));
      });
  addObject(name, delegate);
  return delegate;
}

void SimDevice::recordDelegateCall(std::string_view delegate, std::string_view operation, Dict arguments) {
  delegateCalls_.push_back(Dict{{"delegate", delegate}, {"operation", operation}, {"arguments", std::move(arguments)}});
}

}  // namespace vantu::sim
