#pragma once
// UI port: windows, the main screen and the application object.

#include <memory>

#include "vantu/platform/view_controller.h"

namespace vantu {

class Window : public View {
 public:
  using View::View;

  EdgeInsets safeAreaInsets() const { return safeAreaInsets_; }
  /// Set by the platform when the window's safe area changes.
  void setSafeAreaInsets(EdgeInsets insets) { safeAreaInsets_ = insets; }

  std::shared_ptr<ViewController> rootViewController() const { return rootViewController_; }
  void setRootViewController(std::shared_ptr<ViewController> root) { rootViewController_ = std::move(root); }

 private:
  EdgeInsets safeAreaInsets_;
  std::shared_ptr<ViewController> rootViewController_;
};

/// Where the system image picker takes its picture from.
enum class ImagePickerSource { photoLibrary, camera, savedPhotosAlbum };

class Application {
 public:
  virtual ~Application() = default;

  std::shared_ptr<Window> keyWindow() const { return keyWindow_; }
  void setKeyWindow(std::shared_ptr<Window> window) { keyWindow_ = std::move(window); }
  /// Bounds of the main screen.
  Rect mainScreenBounds() const { return mainScreenBounds_; }
  void setMainScreenBounds(Rect bounds) { mainScreenBounds_ = bounds; }
  Rect statusBarFrame() const { return statusBarFrame_; }
  void setStatusBarFrame(Rect frame) { statusBarFrame_ = frame; }

  /// The status bar's spinner that tells the user the app is using the
  /// network.
  bool isNetworkActivityIndicatorVisible() const { return networkActivityIndicatorVisible_; }
  void setNetworkActivityIndicatorVisible(bool visible) {
    if (visible == networkActivityIndicatorVisible_) return;
    networkActivityIndicatorVisible_ = visible;
    didChangeNetworkActivityIndicator();
  }

  /// Opens the system settings page of the host app.
  void openSettingsPage() { doOpenSettingsPage(); }

  /// Whether the system image picker can take pictures from `source` on
  /// this device (a device without a camera has no camera source).
  bool isImagePickerSourceAvailable(ImagePickerSource source) const { return doIsImagePickerSourceAvailable(source); }

 protected:
  virtual void doOpenSettingsPage() {}
  /// Called after the network activity indicator was shown or hidden.
  virtual void didChangeNetworkActivityIndicator() {}
  virtual bool doIsImagePickerSourceAvailable(ImagePickerSource) const { return false; }

 private:
  std::shared_ptr<Window> keyWindow_;
  Rect mainScreenBounds_;
  Rect statusBarFrame_;
  bool networkActivityIndicatorVisible_ = false;
};

}  // namespace vantu
