// The two bridges that look at a file of the download folder by name.

#include <filesystem>
#include <optional>

#include "vantu/core/h5_op_error.h"
#include "vantu/core/h5_answers.h"
#include "vantu/net/download_folder.h"
#include "vantu/net/get_file_path_handler.h"
#include "vantu/net/remove_file_handler.h"

namespace vantu {
namespace {

/// The file's location when the folder holds a file or a folder under
/// `name`. A link, wherever it points, is answered like a missing file, and
/// so is a pipe, socket or device.
std::optional<std::filesystem::path> existingFile(const std::string& name) {
  auto location = DownloadFolder::locationOf(name);
  const FileEntryKind kind = DownloadFolder::kindOf(name);
  if (!location || (kind != FileEntryKind::regularFile && kind != FileEntryKind::directory)) return std::nullopt;
  return location;
}

}  // namespace

void GetFilePathHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto fileName = params.data.getString("fileName");
  if (!fileName || !isSingleFileName(*fileName)) {
    answerFailure(params.callback, "GetFilePathJSAPIHandler: Failed to bind fileName!");
    return;
  }
  auto file = existingFile(*fileName);
  if (!file) {
    params.callback(H5OpErrorUtil::errorResponse(6, "File not found."));
    return;
  }
  params.callback(payload::success(Dict{{"filePath", file->string()}, {"success", true}}));
}

void RemoveFileHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto fileName = params.data.getString("fileName");
  if (!fileName || !isSingleFileName(*fileName)) {
    answerFailure(params.callback, "RemoveFileJSAPIHandler: Failed to bind fileName!");
    return;
  }
  auto file = existingFile(*fileName);
  if (!file) {
    params.callback(H5OpErrorUtil::errorResponse(6, "File not found."));
    return;
  }
  // Only a regular file is removed: a folder (the download folder holds
  // files only) and whatever replaced the file since the look above stay.
  const bool removed = !DownloadFolder::remove(*fileName);
  params.callback(removed ? payload::successFlag() : H5OpErrorUtil::errorResponse(7, "File could not be deleted."));
}

}  // namespace vantu
