#pragma once
// The bridges that let the user pick an image (photo library, camera) or
// documents for the page.

#include "vantu/core/bridge_list.h"
#include "vantu/pickers/capture_image_from_camera_handler.h"
#include "vantu/pickers/file_picker_handler.h"
#include "vantu/pickers/open_gallery_and_pick_image_handler.h"

namespace vantu {

using PickerBridges = BridgeList<OpenGalleryAndPickImageHandler, CaptureImageFromCameraHandler, FilePickerHandler>;

}  // namespace vantu
