#include "platforms/sim/pickers_runner_command.h"

#include "platforms/sim/sim_pickers_input.h"

namespace vantu::sim {
namespace {

// The one picker of its kind that is shown, or the reason there is none.
template <class Picker>
std::optional<std::string> theOne(const std::vector<std::shared_ptr<Picker>>& shown, std::string_view what,
                                  std::shared_ptr<Picker>& out) {
  if (shown.empty()) return "no " + std::string(what) + " is shown";
  if (shown.size() > 1) return "more than one " + std::string(what) + " is shown";
  out = shown.front();
  return std::nullopt;
}

}  // namespace

std::optional<std::string> pickImageCommand(HeadlessRunner& runner, const Dict& line, Dict& out) {
  SimPickers::ImageChoice choice;
  if (auto error = readImageChoice(*line.find("pickImage"), false, choice)) return "pickImage: " + *error;
  SimPickers& pickers = runner.device().pickers();
  std::shared_ptr<ImagePickerController> picker;
  if (auto error = theOne(pickers.shownImagePickers(), "image picker", picker)) return "pickImage: " + *error;
  out.set(choice.action == SimPickers::Action::cancel ? "cancelled" : "picked", "imagePicker");
  pickers.answer(picker, choice);
  out.set("settled", runner.settle());
  return std::nullopt;
}

std::optional<std::string> pickDocumentsCommand(HeadlessRunner& runner, const Dict& line, Dict& out) {
  SimPickers::DocumentChoice choice;
  if (auto error = readDocumentChoice(*line.find("pickDocuments"), false, choice)) return "pickDocuments: " + *error;
  SimPickers& pickers = runner.device().pickers();
  std::shared_ptr<DocumentPickerController> picker;
  if (auto error = theOne(pickers.shownDocumentPickers(), "document picker", picker)) return "pickDocuments: " + *error;
  out.set(choice.action == SimPickers::Action::cancel ? "cancelled" : "picked", "documentPicker");
  pickers.answer(picker, choice);
  out.set("settled", runner.settle());
  return std::nullopt;
}

std::optional<std::string> cancelPickerCommand(HeadlessRunner& runner, const Dict& line, Dict& out) {
  if (!line.find("cancelPicker")->isDict()) return std::string("\"cancelPicker\" must be an object");
  SimPickers& pickers = runner.device().pickers();
  auto images = pickers.shownImagePickers();
  auto documents = pickers.shownDocumentPickers();
  if (images.size() + documents.size() == 0) return std::string("cancelPicker: no picker is shown");
  if (images.size() + documents.size() > 1) return std::string("cancelPicker: more than one picker is shown");
  if (!images.empty()) {
    out.set("cancelled", "imagePicker");
    pickers.answer(images.front(), SimPickers::ImageChoice{SimPickers::Action::cancel, {}, {}});
  } else {
    out.set("cancelled", "documentPicker");
    pickers.answer(documents.front(), SimPickers::DocumentChoice{SimPickers::Action::cancel, {}});
  }
  out.set("settled", runner.settle());
  return std::nullopt;
}

}  // namespace vantu::sim
