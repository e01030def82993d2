#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuGetFilePath": {"fileName"} -> {"data": {"filePath", "success": true}}
/// for a file of the download folder, or the structured error 6 "File not found.".
class GetFilePathHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuGetFilePath";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
