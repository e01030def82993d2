#pragma once

#include <memory>
#include <mutex>
#include <string_view>

#include "vantu/device/permission_handler.h"

namespace vantu {

class CameraPermissionHandler;
class PhotosPermissionHandler;
class LocationPermissionHandler;
class MicrophonePermissionHandler;
class ContactPermissionHandler;
class SpeechRecognitionPermissionHandler;

/// Maps a permission word to its handler. One process-wide instance; each
/// handler is made on its first lookup and reused after.
class PermissionHandlerFactory {
 public:
  static PermissionHandlerFactory& shared();

  /// The handler for "camera", "photos", "video" (the photo library, the
  /// same handler as "photos"), "location", "microphone", "contacts" or
  /// "speech", matched exactly; null for any other word.
  std::shared_ptr<PermissionHandler> handler(std::string_view word);

  /// Drops every handler (and the state they hold).
  void resetForTesting();

 private:
  template <class Handler>
  std::shared_ptr<PermissionHandler> lazily(std::shared_ptr<Handler>& field);

  std::mutex mutex_;
  std::shared_ptr<CameraPermissionHandler> cameraPermissionHandler_;
  std::shared_ptr<PhotosPermissionHandler> photosPermissionHandler_;
  std::shared_ptr<LocationPermissionHandler> locationPermissionHandler_;
  std::shared_ptr<MicrophonePermissionHandler> microphonePermissionHandler_;
  std::shared_ptr<ContactPermissionHandler> contactPermissionHandler_;
  std::shared_ptr<SpeechRecognitionPermissionHandler> speechRecognitionPermissionHandler_;
};

}  // namespace vantu
