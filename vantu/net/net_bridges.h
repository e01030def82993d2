#pragma once
// The network and file bridges: HTTP requests, downloads into the private
// download folder, their paths and removal, pictures for the photo library.

#include "vantu/core/bridge_list.h"
#include "vantu/net/download_file_handler.h"
#include "vantu/net/get_file_path_handler.h"
#include "vantu/net/http_request_handler.h"
#include "vantu/net/remove_file_handler.h"
#include "vantu/net/save_image_to_gallery_handler.h"

namespace vantu {

using NetBridges = BridgeList<HTTPRequestHandler, DownloadFileHandler, GetFilePathHandler, RemoveFileHandler,
                              SaveImageToGalleryHandler>;

}  // namespace vantu
