// The two bridges that look at a file of the download folder by name.

#include <filesystem>

#include "vantu/core/h5_op_error.h"
#include "vantu/core/h5_answers.h"
#include "vantu/net/download_folder.h"
#include "vantu/net/get_file_path_handler.h"
#include "vantu/net/remove_file_handler.h"

namespace vantu {
namespace {

/// The file's location when something exists there.
std::optional<std::filesystem::path> existingFile(const std::string& name) {
  auto location = DownloadFolder::locationOf(name);
  std::error_code ignored;
  if (!location || !std::filesystem::exists(std::filesystem::symlink_status(*location, ignored))) return std::nullopt;
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
  // A folder is never removed (the folder holds files only; remove() would
  // take an empty one).
  std::error_code error;
  const bool removed = !std::filesystem::is_directory(std::filesystem::symlink_status(*file, error)) &&
                       std::filesystem::remove(*file, error);
  params.callback(removed ? payload::successFlag() : H5OpErrorUtil::errorResponse(7, "File could not be deleted."));
}

}  // namespace vantu
