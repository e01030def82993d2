#include "platforms/sim/sim_pickers.h"

#include "vantu/core/file_url.h"
#include "vantu/core/image_decoder.h"

namespace vantu::sim {
namespace {

template <class T>
std::vector<std::shared_ptr<T>> stillShown(const std::vector<std::weak_ptr<ViewController>>& shown) {
  std::vector<std::shared_ptr<T>> out;
  for (const auto& weak : shown) {
    if (auto picker = std::dynamic_pointer_cast<T>(weak.lock()); picker && picker->presentingViewController()) {
      out.push_back(std::move(picker));
    }
  }
  return out;
}

}  // namespace

void SimPickers::presented(const std::shared_ptr<ViewController>& controller) {
  std::erase_if(shown_, [](const auto& weak) { return weak.expired() || !weak.lock()->presentingViewController(); });
  if (auto picker = std::dynamic_pointer_cast<ImagePickerController>(controller)) {
    shown_.push_back(picker);
    answer(picker, picker->sourceType() == ImagePickerSource::camera ? camera : photoLibrary);
  } else if (auto documentPicker = std::dynamic_pointer_cast<DocumentPickerController>(controller)) {
    shown_.push_back(documentPicker);
    answer(documentPicker, documents);
  }
}

bool SimPickers::answers(const ViewController& controller) const {
  if (const auto* picker = dynamic_cast<const ImagePickerController*>(&controller)) {
    return (picker->sourceType() == ImagePickerSource::camera ? camera : photoLibrary).action != Action::hold;
  }
  return dynamic_cast<const DocumentPickerController*>(&controller) && documents.action != Action::hold;
}

std::vector<std::shared_ptr<ImagePickerController>> SimPickers::shownImagePickers() const {
  return stillShown<ImagePickerController>(shown_);
}

std::vector<std::shared_ptr<DocumentPickerController>> SimPickers::shownDocumentPickers() const {
  return stillShown<DocumentPickerController>(shown_);
}

std::filesystem::path SimPickers::resolve(const std::string& file) const {
  std::filesystem::path path(file);
  if (path.is_relative() && !baseDirectory.empty()) path = baseDirectory / path;
  return std::filesystem::absolute(path).lexically_normal();
}

ImagePickerMediaInfo SimPickers::mediaInfo(const ImageChoice& choice, bool withUrl) const {
  ImagePickerMediaInfo info;
  const auto path = resolve(choice.file);
  if (auto image = decodeImageFile(path)) info[ImagePickerInfoKey::originalImage] = std::make_shared<const Image>(std::move(*image));
  if (withUrl) {
    const std::optional<std::string> url = choice.url ? *choice.url : fileUrlFromPath(path.string());
    if (url) {
      info[ImagePickerInfoKey::imageURL] = *url;
      info[ImagePickerInfoKey::phAsset] = *url;
    }
  }
  return info;
}

void SimPickers::answer(const std::shared_ptr<ImagePickerController>& picker, const ImageChoice& choice) {
  if (choice.action == Action::hold) return;
  if (choice.action == Action::cancel) {
    dispatch_->main()->async([picker] { picker->cancel(); });
    return;
  }
  // A camera capture is a picture without a file.
  auto info = mediaInfo(choice, picker->sourceType() != ImagePickerSource::camera);
  dispatch_->main()->async([picker, info = std::move(info)] { picker->finishPicking(info); });
}

void SimPickers::answer(const std::shared_ptr<DocumentPickerController>& picker, const DocumentChoice& choice) {
  if (choice.action == Action::hold) return;
  if (choice.action == Action::cancel) {
    dispatch_->main()->async([picker] { picker->cancel(); });
    return;
  }
  std::vector<std::string> urls;
  for (const auto& file : choice.files) urls.push_back(fileUrlFromPath(resolve(file).string()));
  dispatch_->main()->async([picker, urls = std::move(urls)] { picker->pickDocuments(urls); });
}

}  // namespace vantu::sim
