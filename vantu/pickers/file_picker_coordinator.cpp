#include "vantu/pickers/file_picker_coordinator.h"

#include <sys/stat.h>

#include "vantu/core/file_url.h"
#include "vantu/pickers/picker_error.h"

namespace vantu {

std::optional<std::string> FilePickerCoordinator::typeOfName(const std::optional<std::string>& name) {
  if (!name) return std::nullopt;
  const auto dot = name->rfind('.');
  return dot == std::string::npos ? *name : name->substr(dot + 1);
}

void FilePickerCoordinator::readMetadata(const std::string& url,
                                         const std::function<void(H5FileCoordinationResult)>& accessor) const {
  const auto path = pathFromFileUrl(url);
  if (!path || path->empty()) {
    accessor(H5FileCoordinationResult{std::nullopt, pickers::makeError(kErrorDomain, 2, kCoordinationFailed)});
    return;
  }
  struct stat info {};
  if (::stat(path->c_str(), &info) != 0) {
    accessor(H5FileCoordinationResult{std::nullopt, pickers::makeError(kErrorDomain, 1, kMetadataFailed)});
    return;
  }
  H5FileProperties properties;
  properties.name = lastPathComponent(*path);
  // Only regular files have a size, as the system's file-size value.
  if (S_ISREG(info.st_mode)) properties.size = static_cast<std::int64_t>(info.st_size);
  properties.type = typeOfName(properties.name);
  properties.url = url;
  accessor(H5FileCoordinationResult{std::move(properties), std::nullopt});
}

}  // namespace vantu
