#pragma once
// UI port: the system document picker. The library makes one for a list
// of document types and a mode, sets its delegate and presents it; the
// platform shows it and reports the outcome through `pickDocuments` (the
// chosen files' URLs, "file:///...") or `cancel`. Like the system's, the
// picker dismisses itself before it tells its delegate.

#include <memory>
#include <string>
#include <vector>

#include "vantu/platform/view_controller.h"

namespace vantu {

class DocumentPickerController;

class DocumentPickerControllerDelegate {
 public:
  virtual ~DocumentPickerControllerDelegate() = default;
  virtual void didPickDocuments(DocumentPickerController& picker, const std::vector<std::string>& urls) = 0;
  /// The single-document entry of systems without multiple selection.
  virtual void didPickDocument(DocumentPickerController& picker, const std::string& url) = 0;
  virtual void wasCancelled(DocumentPickerController& picker) = 0;
};

class DocumentPickerController : public ViewController {
 public:
  enum class Mode { importCopy, open };
  enum class PresentationStyle { fullScreen, popover };

  DocumentPickerController(std::vector<std::string> documentTypes, Mode mode)
      : documentTypes_(std::move(documentTypes)), mode_(mode) {}

  const std::vector<std::string>& documentTypes() const { return documentTypes_; }
  Mode mode() const { return mode_; }
  bool allowsMultipleSelection() const { return allowsMultipleSelection_; }
  void setAllowsMultipleSelection(bool value) { allowsMultipleSelection_ = value; }
  PresentationStyle modalPresentationStyle() const { return presentationStyle_; }
  void setModalPresentationStyle(PresentationStyle style) { presentationStyle_ = style; }

  /// Held weakly, as the platform's picker holds its delegate.
  void setDelegate(std::weak_ptr<DocumentPickerControllerDelegate> delegate) { delegate_ = std::move(delegate); }

  /// The user chose `urls`: the picker dismisses itself (animated) and
  /// tells its delegate through the multiple-selection entry, or the
  /// single-document one when multiple selection is off and one file was
  /// chosen. False, doing nothing, when the picker is not being presented.
  bool pickDocuments(const std::vector<std::string>& urls);
  /// The user cancelled: dismisses and tells the delegate.
  bool cancel();

 private:
  std::vector<std::string> documentTypes_;
  Mode mode_;
  bool allowsMultipleSelection_ = false;
  PresentationStyle presentationStyle_ = PresentationStyle::fullScreen;
  std::weak_ptr<DocumentPickerControllerDelegate> delegate_;
};

}  // namespace vantu
