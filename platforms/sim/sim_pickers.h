#pragma once
// The image picker and the document picker of the simulated device. When
// the library presents one, the device does what the scenario's "pickers"
// section says the user does: picks a file (a real file on disk), cancels,
// or leaves the picker up until the runner's pickImage, pickDocuments or
// cancelPicker command answers it. Every answer reaches the picker on the
// main queue, as a user's action does. A device profile brings the same
// choices to the container, on its own main queue.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vantu/platform/dispatch.h"
#include "vantu/platform/document_picker_controller.h"
#include "vantu/platform/image_picker_controller.h"

namespace vantu::sim {

class SimPickers {
 public:
  enum class Action { hold, cancel, pick };

  /// The user's choice in an image picker.
  struct ImageChoice {
    Action action = Action::hold;
    std::string file;  // the picked image file
    /// The file URL reported; absent: the file's own URL; a present null
    /// (nullopt inside): no URL at all.
    std::optional<std::optional<std::string>> url;
  };

  /// The user's choice in a document picker.
  struct DocumentChoice {
    Action action = Action::hold;
    std::vector<std::string> files;
  };

  explicit SimPickers(std::shared_ptr<Dispatch> dispatch) : dispatch_(std::move(dispatch)) {}

  ImageChoice photoLibrary;
  ImageChoice camera;
  DocumentChoice documents;
  /// Relative file names are resolved against this directory (the
  /// scenario file's); empty: the current directory.
  std::filesystem::path baseDirectory;

  /// The presenting hook: scripts the user's answer to a picker.
  void presented(const std::shared_ptr<ViewController>& controller);
  /// Whether `controller` is a picker these choices answer by themselves
  /// (its choice is "pick" or "cancel", not "hold").
  bool answers(const ViewController& controller) const;

  /// The image / document pickers being presented now.
  std::vector<std::shared_ptr<ImagePickerController>> shownImagePickers() const;
  std::vector<std::shared_ptr<DocumentPickerController>> shownDocumentPickers() const;

  /// The user answers `picker` (on the main queue).
  void answer(const std::shared_ptr<ImagePickerController>& picker, const ImageChoice& choice);
  void answer(const std::shared_ptr<DocumentPickerController>& picker, const DocumentChoice& choice);

  /// `file` resolved against the base directory, made absolute.
  std::filesystem::path resolve(const std::string& file) const;
  /// The media info the picker reports for `choice`: the picture decoded
  /// from the file (none when it is no picture) and, for the library, the
  /// URL under both the image-URL key and the older asset key.
  ImagePickerMediaInfo mediaInfo(const ImageChoice& choice, bool withUrl) const;

 private:
  std::shared_ptr<Dispatch> dispatch_;
  std::vector<std::weak_ptr<ViewController>> shown_;
};

}  // namespace vantu::sim
