#pragma once
// Keys of the startup-parameter dictionary handed to the host's provider
// delegate. The values under them are read by the host's container, not by
// the library.

#include <string_view>

namespace vantu {

struct StartupParams {
  static constexpr std::string_view url = "url";
  /// Deliberately the key "appId".
  static constexpr std::string_view subAppId = "appId";
  static constexpr std::string_view readTitle = "readTitle";
  static constexpr std::string_view defaultTitle = "defaultTitle";
  static constexpr std::string_view showTitleBar = "showTitleBar";
  static constexpr std::string_view showStatusBar = "showStatusBar";
  static constexpr std::string_view statusBarStyle = "statusBarStyle";
  static constexpr std::string_view showLoading = "showLoading";
  static constexpr std::string_view showProgress = "showProgress";
  static constexpr std::string_view defaultSubtitle = "defaultSubtitle";
  static constexpr std::string_view showTitleLoading = "showTitleLoading";
  static constexpr std::string_view backBehavior = "backBehavior";
  static constexpr std::string_view autorotate = "autorotate";
  static constexpr std::string_view titleColor = "titleColor";
  static constexpr std::string_view titleBarColor = "titleBarColor";
  static constexpr std::string_view titleBarShadowImageName = "titleBarShadowImageName";
  static constexpr std::string_view titleBarBackgroundImageName = "titleBarBackgroundImageName";
  static constexpr std::string_view closeButtonVisible = "closeButtonVisible";
  static constexpr std::string_view titleFontName = "titleFontName";
  static constexpr std::string_view titleFontSize = "titleFontSize";
  static constexpr std::string_view backButtonTitle = "backButtonTitle";
  static constexpr std::string_view backButtonTitleFontName = "backButtonTitleFontName";
  static constexpr std::string_view backButtonTitleFontSize = "backButtonTitleFontSize";
  static constexpr std::string_view landscape = "landscape";
  static constexpr std::string_view backButtonImageName = "backButtonImageName";
  static constexpr std::string_view transparentTitle = "transparentTitle";
  static constexpr std::string_view transparentHeight = "transparentHeight";
};

}  // namespace vantu
