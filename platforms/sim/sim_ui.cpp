#include "platforms/sim/sim_ui.h"

#include "vantu/platform/document_picker_controller.h"
#include "vantu/platform/image_picker_controller.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <variant>

namespace vantu::sim {
namespace {

std::string_view changeName(View::Change change) {
  switch (change) {
    case View::Change::Frame: return "frame";
    case View::Change::Hidden: return "hidden";
    case View::Change::BackgroundColor: return "backgroundColor";
    case View::Change::TintColor: return "tintColor";
    case View::Change::Tag: return "tag";
    case View::Change::Subviews: return "subviews";
    case View::Change::ContentOffset: return "contentOffset";
    case View::Change::ScrollSettings: return "scrollSettings";
  }
  return "unknown";
}

Value changedValue(const View& view, View::Change change) {
  switch (change) {
    case View::Change::Frame: return frameValue(view.frame());
    case View::Change::Hidden: return view.isHidden();
    case View::Change::BackgroundColor: return colorValue(view.backgroundColor());
    case View::Change::TintColor: return colorValue(view.tintColor());
    case View::Change::Tag: return view.tag();
    case View::Change::Subviews: {
      Array names;
      for (const auto& sub : view.subviews()) {
        names.emplace_back(sub->name().empty() ? fmt::format("tag:{}", sub->tag()) : sub->name());
      }
      return names;
    }
    case View::Change::ContentOffset: {
      if (const auto* scroll = dynamic_cast<const ScrollView*>(&view)) {
        return Array{scroll->contentOffset().x, scroll->contentOffset().y};
      }
      return nullptr;
    }
    case View::Change::ScrollSettings: {
      Dict settings;
      if (const auto* scroll = dynamic_cast<const ScrollView*>(&view)) {
        if (auto v = scroll->contentInsetAdjustmentBehavior()) settings.set("contentInsetAdjustmentBehavior", *v);
        if (auto v = scroll->keyboardDismissMode()) settings.set("keyboardDismissMode", *v);
      }
      return settings;
    }
  }
  return nullptr;
}

std::shared_ptr<View> namedRootView(const std::shared_ptr<EffectLog>& log, const std::string& owner) {
  // Named after its owner so that its changes show up in reports.
  auto view = std::make_shared<SimView>(log);
  view->setName(owner + ".view");
  return view;
}

}  // namespace

void recordViewChange(EffectLog& log, const View& view, View::Change change) {
  log.record(Dict{{"effect", "view"},
                  {"view", view.name()},
                  {"change", changeName(change)},
                  {"value", changedValue(view, change)}});
}

void recordPresentation(EffectLog& log, std::string_view effect, const ViewController& on,
                        const ViewController& presented, bool animated) {
  Dict record{{"effect", effect}, {"on", describe(&on)}, {"presented", describe(&presented)}, {"animated", animated}};
  if (effect == "presentRefused") record.set("showing", describe(on.presentedViewController().get()));
  // What an alert or a share sheet shows (or would have shown).
  if (effect != "dismiss") {
    if (const auto* alert = dynamic_cast<const AlertController*>(&presented)) {
      record.set("alert", alertValue(*alert));
    } else if (const auto* sheet = dynamic_cast<const ActivityViewController*>(&presented)) {
      record.set("share", shareValue(*sheet));
    } else if (auto picker = pickerValue(presented)) {
      record.set("picker", std::move(*picker));
    }
  }
  log.record(std::move(record));
}

Dict alertValue(const AlertController& alert) {
  Array buttons;
  for (const auto& action : alert.actions()) buttons.emplace_back(action.title());
  return Dict{{"title", alert.title()}, {"message", alert.message()}, {"buttons", std::move(buttons)}};
}

Dict shareValue(const ActivityViewController& sheet) {
  // The items are at most one text and one image (ShareUtil); the first of
  // each kind is reported.
  Value text, image;
  for (const auto& item : sheet.activityItems()) {
    if (const auto* t = std::get_if<std::string>(&item); t && text.isNull()) {
      text = *t;
    } else if (const auto* i = std::get_if<Image>(&item); i && image.isNull()) {
      image = Dict{{"width", static_cast<std::int64_t>(std::lround(i->size.width))},
                   {"height", static_cast<std::int64_t>(std::lround(i->size.height))}};
    }
  }
  return Dict{{"text", std::move(text)}, {"image", std::move(image)}};
}

std::optional<Dict> pickerValue(const ViewController& controller) {
  if (const auto* image = dynamic_cast<const ImagePickerController*>(&controller)) {
    const bool camera = image->sourceType() == ImagePickerSource::camera;
    Dict value{{"source", camera ? "camera" : image->sourceType() == ImagePickerSource::photoLibrary ? "photoLibrary"
                                                                                                       : "savedPhotosAlbum"}};
    if (camera) {
      value.set("cameraDevice", image->cameraDevice() == ImagePickerController::CameraDevice::front ? "front" : "rear");
    }
    value.set("allowsEditing", image->allowsEditing());
    return value;
  }
  if (const auto* documents = dynamic_cast<const DocumentPickerController*>(&controller)) {
    Array types;
    for (const auto& type : documents->documentTypes()) types.emplace_back(type);
    return Dict{{"types", std::move(types)},
                {"mode", documents->mode() == DocumentPickerController::Mode::importCopy ? "import" : "open"},
                {"multipleSelection", documents->allowsMultipleSelection()},
                {"style", documents->modalPresentationStyle() == DocumentPickerController::PresentationStyle::popover
                              ? "popover"
                              : "fullScreen"}};
  }
  return std::nullopt;
}

Value frameValue(const Rect& r) { return Array{r.x, r.y, r.width, r.height}; }

Value colorValue(const std::optional<Color>& c) {
  if (!c) return nullptr;
  auto byte = [](double v) { return static_cast<int>(std::lround(std::clamp(v, 0.0, 1.0) * 255)); };
  if (c->alpha >= 1.0) return fmt::format("#{:02x}{:02x}{:02x}", byte(c->red), byte(c->green), byte(c->blue));
  return fmt::format("#{:02x}{:02x}{:02x}{:02x}", byte(c->red), byte(c->green), byte(c->blue), byte(c->alpha));
}

std::string describe(const ViewController* vc) {
  if (!vc) return "";
  if (!vc->name().empty()) return vc->name();
  if (dynamic_cast<const AlertController*>(vc)) return "alert";
  if (dynamic_cast<const ActivityViewController*>(vc)) return "shareSheet";
  if (dynamic_cast<const ImagePickerController*>(vc)) return "imagePicker";
  if (dynamic_cast<const DocumentPickerController*>(vc)) return "documentPicker";
  return "unnamed view controller";
}

std::shared_ptr<SimWebView> SimWebView::make(std::shared_ptr<EffectLog> log, Rect frame, std::string name) {
  auto webView = std::make_shared<SimWebView>(log, frame);
  webView->setName(name);
  auto scroll = std::make_shared<SimScrollView>(log, Rect{0, 0, frame.width, frame.height});
  scroll->setName(name + ".scrollView");
  webView->installScrollView(std::move(scroll));
  return webView;
}

template <class Base>
std::shared_ptr<View> RecordedController<Base>::loadView() {
  return namedRootView(log_, this->name());
}

template <class Base>
void RecordedController<Base>::didPresent(const std::shared_ptr<ViewController>& presented, bool animated) {
  recordPresentation(*log_, "present", *this, *presented, animated);
  log_->presented(presented);
}

template <class Base>
void RecordedController<Base>::didDismiss(const std::shared_ptr<ViewController>& presented, bool animated) {
  recordPresentation(*log_, "dismiss", *this, *presented, animated);
}

template <class Base>
void RecordedController<Base>::didRefusePresentation(const std::shared_ptr<ViewController>& presented,
                                                     bool animated) {
  recordPresentation(*log_, "presentRefused", *this, *presented, animated);
}

template class RecordedController<ViewController>;
template class RecordedController<NavigationController>;
template class RecordedController<TabBarController>;

SimNavigationController::SimNavigationController(std::shared_ptr<EffectLog> log)
    : RecordedController(std::move(log)) {
  replaceNavigationBar(std::make_shared<SimNavigationBar>(this->log(), Rect{0, 0, 0, 44}));
}

void SimNavigationController::didPush(const std::shared_ptr<ViewController>& pushed, bool animated) {
  log()->record(Dict{{"effect", "push"}, {"navigationController", describe(this)}, {"pushed", describe(pushed.get())},
                     {"animated", animated}});
}

SimTabBarController::SimTabBarController(std::shared_ptr<EffectLog> log) : RecordedController(std::move(log)) {
  replaceTabBar(std::make_shared<SimView>(this->log(), Rect{0, 0, 0, 49}));
}

void SimApplication::doOpenSettingsPage() { log_->record(Dict{{"effect", "openSettings"}}); }

void SimApplication::didChangeNetworkActivityIndicator() {
  log_->record(Dict{{"effect", "networkActivityIndicator"}, {"visible", isNetworkActivityIndicatorVisible()}});
}

}  // namespace vantu::sim
