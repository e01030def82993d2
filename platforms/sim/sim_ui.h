#pragma once
// UI objects of the simulated device. They behave like the port models and
// record what the library did to them as effects, which the headless runner
// reports and tests inspect.

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "vantu/platform/activity_view_controller.h"
#include "vantu/platform/alert_controller.h"
#include "vantu/platform/application.h"
#include "vantu/value/value.h"

namespace vantu::sim {

/// What the library did to the simulated UI, in order.
class EffectLog {
 public:
  using PresentationObserver = std::function<void(const std::shared_ptr<ViewController>&)>;

  void record(Dict effect) { effects_.push_back(std::move(effect)); }
  /// The simulated UI's presenting hook beyond the record: the device
  /// shows pickers from here.
  void setPresentationObserver(PresentationObserver observer) { observer_ = std::move(observer); }
  void presented(const std::shared_ptr<ViewController>& controller) {
    if (observer_) observer_(controller);
  }
  std::vector<Dict> take() { return std::exchange(effects_, {}); }
  const std::vector<Dict>& peek() const { return effects_; }

 private:
  std::vector<Dict> effects_;
  PresentationObserver observer_;
};

Value frameValue(const Rect& r);
/// "#rrggbb", or "#rrggbbaa" when not opaque; null for no colour.
Value colorValue(const std::optional<Color>& c);
/// A view controller's name for reports ("" for none).
std::string describe(const ViewController* vc);
void recordViewChange(EffectLog& log, const View& view, View::Change change);
/// {"effect": "present" | "dismiss" | "presentRefused", "on", "presented",
/// "animated"}; a refused presentation adds "showing" (what `on` already
/// presents). An unnamed alert reads "alert" and, when presented or
/// refused, adds "alert" (alertValue); an unnamed share sheet reads
/// "shareSheet" and adds "share" (shareValue); an unnamed image picker
/// reads "imagePicker" and a document picker "documentPicker", adding
/// "picker" (pickerValue).
void recordPresentation(EffectLog& log, std::string_view effect, const ViewController& on,
                        const ViewController& presented, bool animated);
/// {"title", "message", "buttons": [titles in order]}
Dict alertValue(const AlertController& alert);
/// {"text": text or null, "image": {"width", "height"} or null}
Dict shareValue(const ActivityViewController& sheet);
/// Image picker: {"source", "cameraDevice" (camera only), "allowsEditing"};
/// document picker: {"types", "mode", "multipleSelection", "style"}.
std::optional<Dict> pickerValue(const ViewController& controller);

/// A view model that reports every change of a named view.
template <class Base>
class Recorded : public Base {
 public:
  explicit Recorded(std::shared_ptr<EffectLog> log, Rect frame = {}) : Base(frame), log_(std::move(log)) {}

 protected:
  void didChange(View::Change change) override {
    if (!this->name().empty()) recordViewChange(*log_, *this, change);
  }

 private:
  std::shared_ptr<EffectLog> log_;
};

using SimView = Recorded<View>;
using SimScrollView = Recorded<ScrollView>;
using SimWindow = Recorded<Window>;
using SimNavigationBar = Recorded<NavigationBar>;

class SimWebView : public Recorded<WebView> {
 public:
  /// A web view whose scroll view is named "<name>.scrollView".
  static std::shared_ptr<SimWebView> make(std::shared_ptr<EffectLog> log, Rect frame, std::string name);
  using Recorded<WebView>::Recorded;
};

/// A view controller model that names its root view after itself and
/// records every presentation, dismissal and refused presentation on it;
/// a presentation also reaches the log's presentation observer.
template <class Base>
class RecordedController : public Base {
 public:
  explicit RecordedController(std::shared_ptr<EffectLog> log) : log_(std::move(log)) {}

 protected:
  std::shared_ptr<View> loadView() override;
  void didPresent(const std::shared_ptr<ViewController>& presented, bool animated) override;
  void didDismiss(const std::shared_ptr<ViewController>& presented, bool animated) override;
  void didRefusePresentation(const std::shared_ptr<ViewController>& presented, bool animated) override;

  const std::shared_ptr<EffectLog>& log() const { return log_; }

 private:
  std::shared_ptr<EffectLog> log_;
};

extern template class RecordedController<ViewController>;
extern template class RecordedController<NavigationController>;
extern template class RecordedController<TabBarController>;

using SimViewController = RecordedController<ViewController>;

class SimNavigationController : public RecordedController<NavigationController> {
 public:
  explicit SimNavigationController(std::shared_ptr<EffectLog> log);

 protected:
  void didPush(const std::shared_ptr<ViewController>& pushed, bool animated) override;
};

class SimTabBarController : public RecordedController<TabBarController> {
 public:
  explicit SimTabBarController(std::shared_ptr<EffectLog> log);
};

class SimApplication : public Application {
 public:
  explicit SimApplication(std::shared_ptr<EffectLog> log) : log_(std::move(log)) {}

  /// The image picker's sources this device has; all of them by default.
  std::set<ImagePickerSource> imagePickerSources{ImagePickerSource::photoLibrary, ImagePickerSource::camera,
                                                 ImagePickerSource::savedPhotosAlbum};

 protected:
  void doOpenSettingsPage() override;
  /// Records {"effect": "networkActivityIndicator", "visible": bool}.
  void didChangeNetworkActivityIndicator() override;
  bool doIsImagePickerSourceAvailable(ImagePickerSource source) const override {
    return imagePickerSources.count(source) != 0;
  }

 private:
  std::shared_ptr<EffectLog> log_;
};

}  // namespace vantu::sim
