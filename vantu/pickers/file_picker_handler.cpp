#include "vantu/pickers/file_picker_handler.h"

#include <algorithm>
#include <mutex>

#include "vantu/core/file_url.h"
#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/core/url.h"
#include "vantu/pickers/file_base64.h"
#include "vantu/pickers/picker_error.h"
#include "vantu/platform/platform.h"

namespace vantu {

FilePickerHandler::FilePickerHandler()
    : filePicker_(std::make_shared<FilePicker>()),
      bgQueue_(platform().dispatch->makeSerialQueue(std::string(kQueueLabel))) {}

void FilePickerHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  if (!params.viewController) return answerFailure(params.callback, kNoViewController);
  auto restrictions = H5FileRestrictions::bind(params.data);
  filePicker_->pick(*params.viewController,
                    [weak = weakSelf(this), restrictions, callback = params.callback](
                        bool success, std::optional<PlatformError> error, std::optional<std::vector<std::string>> urls) {
                      if (!success) {
                        return answerFailure(callback, error ? error->localizedDescription : kPickFailed);
                      }
                      if (!urls) return answerFailure(callback, kNoUrls);
                      if (restrictions.maxNumberOfFilesAllowed &&
                          *restrictions.maxNumberOfFilesAllowed < static_cast<std::int64_t>(urls->size())) {
                        return answerFailure(callback, kTooManyFiles);
                      }
                      if (auto self = weak.lock()) self->processFiles(*urls, restrictions, callback);
                    });
}

void FilePickerHandler::processFiles(const std::vector<std::string>& urls, H5FileRestrictions restrictions,
                                     H5Callback callback) {
  struct Collected {
    std::mutex mutex;
    std::vector<H5FileCoordinationResult> results;
  };
  auto group = std::make_shared<DispatchGroup>();
  auto collected = std::make_shared<Collected>();
  for (const auto& url : urls) {
    group->enter();
    coordinator_.readMetadata(url, [&](H5FileCoordinationResult result) {
      std::lock_guard lock(collected->mutex);
      collected->results.push_back(std::move(result));
    });
    group->leave();
  }
  // The limit is read here, on the main thread, where it is set.
  group->notify(bgQueue_, [weak = weakSelf(this), group, collected, restrictions = std::move(restrictions),
                           callback = std::move(callback), maxReadBytes = maxReadBytes_] {
    if (weak.expired()) return;
    Array entries;
    entries.reserve(collected->results.size());
    for (const auto& result : collected->results) entries.emplace_back(entryFor(result, restrictions, maxReadBytes));
    platform().dispatch->main()->async([callback, entries = std::move(entries)]() mutable {
      callback(payload::success(std::move(entries)));
    });
  });
}

Dict FilePickerHandler::entryFor(const H5FileCoordinationResult& result, const H5FileRestrictions& restrictions,
                                 std::uint64_t maxReadBytes) {
  auto errorEntry = [](std::string_view text) { return Dict{{"error", text}}; };
  const auto& properties = result.properties;
  // A coordination error, when there is one, explains a missing extension.
  const std::string extensionError = result.error ? result.error->localizedDescription : std::string(kExtensionNotAllowed);
  if (!properties || !properties->type || properties->type->empty()) return errorEntry(extensionError);
  if (restrictions.allowedExtensions) {
    const std::string type = asciiLowercased(*properties->type);
    const auto& allowed = *restrictions.allowedExtensions;
    if (std::find(allowed.begin(), allowed.end(), type) == allowed.end()) return errorEntry(extensionError);
  }
  const std::int64_t size = properties->size.value_or(0);
  if (size < 1) return errorEntry(kEmptyFile);
  if (restrictions.maxFileSize && *restrictions.maxFileSize < size) return errorEntry(kFileTooBig);
  if (result.error) return errorEntry(result.error->localizedDescription);

  Dict entry{{"meta", Dict{{"fileName", properties->name.value_or("")},
                           {"fileSize", size},
                           {"fileType", properties->type.value_or("")}}}};
  const auto path = properties->url ? pathFromFileUrl(*properties->url) : std::nullopt;
  if (!path) return entry;
  auto contents = pickers::readFileAsBase64(*path, maxReadBytes);
  if (contents.status == pickers::FileBase64::Status::tooLarge) return errorEntry(kOverReadLimit);
  if (contents.status == pickers::FileBase64::Status::ok) entry.set("base64", std::move(contents.text));
  return entry;
}

}  // namespace vantu
