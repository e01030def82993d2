#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuDownloadFile": {"fileName", "fileDownloadUrl", optional
/// "showNetworkActivityIndicator": "true"} -> {"data": {"fileName",
/// "fileDownloadUrl", ["error": {"code", "message"}], "success", "filePath"}}.
/// The body streams into a hidden file of the download folder, which is
/// moved to its name only after a 200 answer (never replacing a file).
class DownloadFileHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuDownloadFile";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
