#include "vantu/container/vantu_h5_container_customizer.h"

#include <string>

#include "vantu/container/vantu_h5_color.h"
#include "vantu/container/vantu_h5_container_customization_constants.h"
#include "vantu/core/diagnostics.h"
#include "vantu/core/h5_web_view_extractor.h"
#include "vantu/core/os_version.h"
#include "vantu/core/view_controller_context.h"
#include "vantu/platform/platform.h"

namespace vantu {
namespace {

constexpr std::string_view kNoNavigationController = "VantuH5ContainerCustomizer: No navigation controlelr!!!";
constexpr std::string_view kVisibleFlagTypecastFailure = "VantuH5ContainerCustomizer: Visible flag typecast failure!!!";
constexpr std::string_view kTintColorTypecastFailure =
    "VantuH5ContainerCustomizer: Hex string typecast failed in customizeNavigationBarColor!!!";
constexpr std::string_view kStatusbarColorTypecastFailure =
    "VantuH5ContainerCustomizer: Hex string typecast failed in customizeStatusbarBackgroundColor!!!";
constexpr std::string_view kUnrecognizedFlag = "Unrecognized flag value ";

std::shared_ptr<Window> keyWindow() {
  const auto& application = platform().application;
  return application ? application->keyWindow() : nullptr;
}

}  // namespace

void VantuH5ContainerCustomizer::customize(ViewController& viewController,
                                           const std::shared_ptr<NavigationController>& navigationController,
                                           const Dict& flags) {
  using enum VantuH5ContainerCustomizationConstants;
  for (const auto& [key, value] : flags) {
    const std::string* name = key.string();
    auto flag = name ? containerCustomizationConstantFromRawValue(*name) : std::nullopt;
    if (!flag) {
      printDiagnostic(std::string(kUnrecognizedFlag) + key.text());
      continue;
    }
    switch (*flag) {
      case kVantuH5ContainerTitleBarVisibilityStatus:
        setTitleBarVisibility(viewController, navigationController.get(), value);
        break;
      case kVantuH5ContainerRenderAboveHomeIndicator:
        setRendersAboveHomeIndicator(viewController, navigationController.get(), value);
        break;
      case kVantuH5ContainerTitleBarTintColor:
        setTitleBarTintColor(navigationController.get(), value);
        break;
      case kVantuH5ContainerStatusbarBackgroundColor:
        setStatusbarBackgroundColor(value);
        break;
      case kVantuH5ContainerResetStatusbarBackgroundColor:
        resetStatusbarBackgroundColor();
        break;
    }
  }
}

void VantuH5ContainerCustomizer::setTitleBarVisibility(ViewController& viewController,
                                                       NavigationController* navigationController,
                                                       const Value& value) {
  if (!navigationController) {
    printDiagnostic(kNoNavigationController);
    return;
  }
  auto bar = navigationController->navigationBar();
  auto visible = value.asBool();
  if (!visible) {
    printDiagnostic(kVisibleFlagTypecastFailure);
    return;
  }
  if (bar) bar->setHidden(!*visible);
  // Whichever way the bar goes, the top safe area is now the container's.
  setTopSafeAreaTreatmentRequired(viewController, true);
  layoutWebView(viewController, *navigationController);
}

void VantuH5ContainerCustomizer::setRendersAboveHomeIndicator(ViewController& viewController,
                                                              NavigationController* navigationController,
                                                              const Value& value) {
  if (!navigationController) {
    printDiagnostic(kNoNavigationController);
    return;
  }
  auto renderAbove = value.asBool();
  if (!renderAbove) {
    printDiagnostic(kVisibleFlagTypecastFailure);
    return;
  }
  setBottomSafeAreaTreatmentRequired(viewController, *renderAbove);
  layoutWebView(viewController, *navigationController);
}

void VantuH5ContainerCustomizer::setTitleBarTintColor(NavigationController* navigationController, const Value& value) {
  if (!navigationController) {
    printDiagnostic(kNoNavigationController);
    return;
  }
  const std::string* hex = value.asString();
  if (!hex) {
    printDiagnostic(kTintColorTypecastFailure);
    return;
  }
  if (auto bar = navigationController->navigationBar()) bar->setTintColor(VantuH5Color::colorFromHexString(*hex));
}

void VantuH5ContainerCustomizer::setStatusbarBackgroundColor(const Value& value) {
  const std::string* hex = value.asString();
  if (!hex) {
    printDiagnostic(kStatusbarColorTypecastFailure);
    return;
  }
  auto window = keyWindow();
  if (!window) return;
  if (auto old = window->viewWithTag(kStatusbarBackgroundViewTag); old && old != window) old->removeFromSuperview();
  const auto& application = *platform().application;
  auto strip = std::make_shared<View>(
      Rect{0, 0, application.mainScreenBounds().width, application.statusBarFrame().height});
  strip->setBackgroundColor(VantuH5Color::colorFromHexString(*hex));
  strip->setTag(kStatusbarBackgroundViewTag);
  window->addSubview(strip);
}

void VantuH5ContainerCustomizer::resetStatusbarBackgroundColor() {
  auto window = keyWindow();
  if (!window) return;
  if (auto strip = window->viewWithTag(kStatusbarBackgroundViewTag); strip && strip != window) {
    strip->removeFromSuperview();
  }
}

void VantuH5ContainerCustomizer::layoutWebView(ViewController& viewController,
                                               NavigationController& navigationController) {
  auto webView = H5WebViewExtractor::extractWebViewFrom(viewController);
  if (!webView) return;
  if (!isSystemVersionAtLeast(11)) return;
  auto window = keyWindow();
  if (!window) return;

  auto bar = navigationController.navigationBar();
  const bool barHidden = !bar || bar->isHidden();
  const double top = window->safeAreaInsets().top;
  const double barHeight = barHidden ? 0 : bar->frame().height;
  const double bottom =
      getBottomSafeAreaTreatmentRequired(viewController).value_or(false) ? window->safeAreaInsets().bottom : 0;
  const double offset = top + barHeight;

  const Rect screen = platform().application->mainScreenBounds();
  auto root = viewController.view();
  if (barHidden) {
    root->setFrame(Rect{0, 0, screen.width, screen.height});
    const Rect area = root->frame();
    webView->setFrame(Rect{0, offset, area.width, area.height - offset - bottom});
  } else {
    root->setFrame(Rect{0, offset, screen.width, screen.height - offset});
    const Rect area = root->frame();
    webView->setFrame(Rect{0, 0, area.width, area.height - bottom});
  }
}

}  // namespace vantu
