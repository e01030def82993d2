#include "vantu/pickers/image_pick_post_processor.h"

#include <charconv>
#include <filesystem>
#include <limits>

#include "vantu/core/file_url.h"
#include "vantu/core/os_version.h"
#include "vantu/core/url.h"
#include "vantu/pickers/file_base64.h"
#include "vantu/pickers/image_encoder.h"
#include "vantu/pickers/picker_error.h"
#include "vantu/value/base64.h"

namespace vantu {
namespace {

using Processor = ImagePickPostProcessor;

PlatformError postError(std::int64_t code, std::string_view message) {
  return pickers::makeError(Processor::kErrorDomain, code, message);
}

std::string_view urlMissingMessage() {
  return isSystemVersionAtLeast(11) ? Processor::kUrlMissing : Processor::kUrlMissingBefore11;
}

void encodeCaptured(const Image& image, std::string_view type, H5ImagePickPostProcessingResult& result) {
  std::vector<std::uint8_t> bytes;
  if (type.find("jpg") != std::string_view::npos || type.find("jpeg") != std::string_view::npos) {
    bytes = encodeJpeg(image, 1.0);
  } else if (type.find("png") != std::string_view::npos) {
    bytes = encodePng(image);
  } else {
    result.imageSizeError = postError(Processor::invalidImageType, Processor::kTypeInvalid);
    return;
  }
  if (bytes.empty()) return;  // an encoder that yields nothing: no bytes, no error
  result.imageSize = static_cast<std::int64_t>(bytes.size());
  result.base64 = base64::encode(bytes);
}

}  // namespace

std::optional<std::string> ImagePickPostProcessor::imageUrl(const ImagePicker::Info& info) {
  const auto key = isSystemVersionAtLeast(11) ? ImagePickerInfoKey::imageURL : ImagePickerInfoKey::phAsset;
  auto it = info.find(rawValue(key));
  if (it == info.end()) return std::nullopt;
  const auto* url = std::get_if<std::string>(&it->second);
  return url ? std::optional<std::string>(*url) : std::nullopt;
}

std::string ImagePickPostProcessor::imageTypeOfUrl(std::string_view url) {
  const std::string lowered = asciiLowercased(url);
  if (lowered.ends_with("jpg") || lowered.ends_with("jpeg")) return std::string(H5ImageType::jpg);
  if (lowered.ends_with("png")) return std::string(H5ImageType::png);
  return std::string(H5ImageType::unknown);
}

std::string ImagePickPostProcessor::cameraImageName(double secondsSince1970) {
  char buffer[64];
  auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, secondsSince1970, std::chars_format::fixed);
  std::string text(buffer, ec == std::errc() ? end : buffer);
  if (text.find('.') == std::string::npos) text += ".0";
  text[text.find('.')] = '_';
  return text + ".jpg";
}

H5ImagePickPostProcessingResult ImagePickPostProcessor::processLibraryPick(const ImagePicker::Info& info) {
  H5ImagePickPostProcessingResult result;
  const auto url = imageUrl(info);
  if (!url) {
    result.imageNameError = postError(nameUrlMissing, urlMissingMessage());
    result.imageTypeError = postError(typeUrlMissing, urlMissingMessage());
    result.imageSizeError = postError(bytesUrlMissing, urlMissingMessage());
    result.base64 = "";
    return result;
  }
  const auto path = pathFromFileUrl(*url);
  result.imageName = lastPathComponent(path.value_or(""));
  result.imageType = imageTypeOfUrl(*url);
  if (!path || path->empty()) {
    result.imageSizeError = postError(emptyImagePath, kNoImagePath);
  } else {
    std::error_code error;
    const auto size = std::filesystem::file_size(*path, error);
    result.imageSize = error ? 0 : static_cast<std::int64_t>(size);  // the size attribute, not the length read
    auto contents = pickers::readFileAsBase64(*path, std::numeric_limits<std::uint64_t>::max());
    if (contents.status == pickers::FileBase64::Status::ok) {
      result.base64 = std::move(contents.text);
    } else {
      result.imageSizeError = postError(unreadableFile, kReadFailed);
    }
  }
  if (!result.base64) result.base64 = "";
  return result;
}

H5ImagePickPostProcessingResult ImagePickPostProcessor::processCameraCapture(const Image& image,
                                                                             double secondsSince1970) {
  H5ImagePickPostProcessingResult result;
  result.imageName = cameraImageName(secondsSince1970);
  result.imageType = std::string(H5ImageType::jpg);
  encodeCapturedImage(&image, result.imageType, result);
  if (!result.base64) result.base64 = "";
  return result;
}

void ImagePickPostProcessor::encodeCapturedImage(const Image* image, const std::optional<std::string>& type,
                                                 H5ImagePickPostProcessingResult& result) {
  if (!image) {
    result.imageSizeError = postError(noImage, kImageNil);
  } else if (!type) {
    result.imageSizeError = postError(noImageType, kTypeNil);
  } else {
    encodeCaptured(*image, *type, result);
  }
}

}  // namespace vantu
