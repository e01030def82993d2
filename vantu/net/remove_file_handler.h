#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuRemoveFile": {"fileName"} -> {"data": {"success": true}} once the
/// file of the download folder is gone; structured errors 6 "File not
/// found." and 7 "File could not be deleted.".
class RemoveFileHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuRemoveFile";
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
