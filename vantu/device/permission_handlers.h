#pragma once
// The permission kinds the bridges know, one handler each.

#include <memory>

#include "vantu/device/location_permission_requester.h"
#include "vantu/device/system_permission_handler.h"

namespace vantu {

class CameraPermissionHandler : public ResourcePermissionHandler {
 public:
  CameraPermissionHandler() : ResourcePermissionHandler(ProtectedResource::camera) {}
  std::string_view settingsMessage() const override {
    return "We need access to Camera to proceed. Would you like to open Settings and grant us permission to use Camera?";
  }
};

/// The photo library. A device without a photo-library source reports it
/// granted before its state is read. The limited state is not in the table.
class PhotosPermissionHandler : public ResourcePermissionHandler {
 public:
  PhotosPermissionHandler() : ResourcePermissionHandler(ProtectedResource::photoLibrary) {}
  // The last word is "Camera" in the shipped text; pages may match on it.
  std::string_view settingsMessage() const override {
    return "We need access to Photos to proceed. Would you like to open Settings and grant us permission to use Camera?";
  }

 protected:
  Standing standing() const override;
};

/// The state comes from the location services; the prompt's answer
/// arrives through `LocationPermissionRequester`.
class LocationPermissionHandler : public SystemPermissionHandler {
 public:
  std::string_view settingsMessage() const override {
    return "We need access to Location to proceed. Would you like to open settings and grant us permission to Location "
           "Services?";
  }

 protected:
  Standing standing() const override;
  void askPlatform(std::function<void(bool granted)> done) override;

 private:
  std::shared_ptr<LocationPermissionRequester> locPermRequester_;
};

/// The record permission knows granted, denied and undetermined only.
class MicrophonePermissionHandler : public ResourcePermissionHandler {
 public:
  MicrophonePermissionHandler() : ResourcePermissionHandler(ProtectedResource::microphone, {.restricted = false}) {}
  // Two spaces after "us" in the shipped text.
  std::string_view settingsMessage() const override {
    return "We need access to microphone to proceed. Would you like to open settings and grant us  permission to access "
           "the Microphone?";
  }
};

class ContactPermissionHandler : public ResourcePermissionHandler {
 public:
  ContactPermissionHandler() : ResourcePermissionHandler(ProtectedResource::contacts) {}
  std::string_view settingsMessage() const override {
    return "We need access to your Contacts to proceed. Would you like to open settings and grant permission to "
           "Contacts?";
  }
};

class SpeechRecognitionPermissionHandler : public ResourcePermissionHandler {
 public:
  SpeechRecognitionPermissionHandler() : ResourcePermissionHandler(ProtectedResource::speechRecognition) {}
  std::string_view settingsMessage() const override {
    return "We need access to Speech Recognition to proceed. Would you like to open settings and grant permission to "
           "Speech Recognition?";
  }
};

}  // namespace vantu
