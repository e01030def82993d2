#pragma once

#include "vantu/core/h5_base_handler.h"

namespace vantu {

/// "vantuDownloadAndSaveImageToGallery": {"imageUrl"} -> {"success": true}
/// once the downloaded picture is in the photo library. Asks for photo
/// library access first: restricted and denied answer their flat errors,
/// any state but authorised (not determined, limited, unknown) answers
/// nothing at all. The picture passes through a file of the download folder
/// with a random 7-character name, removed once it has been read.
class SaveImageToGalleryHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "vantuDownloadAndSaveImageToGallery";
  /// Larger downloads are not read as pictures (they could not be one
  /// within the decoder's limits anyway).
  static constexpr std::uintmax_t kMaxImageFileBytes = 128u << 20;
  void handleWith(H5HandlerInputParams params) override;
};

}  // namespace vantu
