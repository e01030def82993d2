#include "vantu/net/save_image_to_gallery_handler.h"

#include <fmt/format.h>

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/core/image_decoder.h"
#include "vantu/core/url.h"
#include "vantu/net/download_folder.h"
#include "vantu/platform/platform.h"

namespace vantu {
namespace {

constexpr std::size_t kLocalNameLength = 7;
constexpr double kTimeoutSeconds = 60;
constexpr std::string_view kFailedToSave = "SaveImagetoGalleryJSAPIHandler: Failed to move image to gallery!";

/// The error as the platform prints it.
std::string describe(const PlatformError& error) {
  return fmt::format("Error Domain={} Code={} \"{}\"", error.domain, error.code, error.localizedDescription);
}

/// The bytes of the download folder's file `name` when it is a regular file
/// small enough to be a picture; then removes it.
std::optional<Bytes> takeFile(const std::string& name) {
  auto read = DownloadFolder::read(name, SaveImageToGalleryHandler::kMaxImageFileBytes);
  DownloadFolder::remove(name);
  if (!read.ok()) return std::nullopt;
  return std::move(read.value());
}

void downloadAndSave(const std::string& imageUrl, const H5Callback& callback) {
  auto answer = [callback](Value value) { callback(value); };
  auto fail = [callback](std::string_view message) { answerFailure(callback, message); };
  auto transport = platform().httpTransport;
  const std::string localName = randomFileName(kLocalNameLength);
  auto local = DownloadFolder::locationOf(localName);
  if (!Url::parse(imageUrl)) return fail("Valid URL could not be formulated.");
  if (!transport || !local) return fail(kFailedToSave);
  UrlRequest request;
  request.url = imageUrl;
  request.timeoutSeconds = kTimeoutSeconds;
  transport->start(HttpTransfer{std::move(request), *local}, [answer, fail, localName](HttpTransferResult result) {
    if (result.error) return fail(fmt::format("SaveImagetoGalleryJSAPIHandler: {}", describe(*result.error)));
    auto bytes = takeFile(localName);
    auto library = platform().photoLibrary;
    if (!bytes || !decodeImage(bytes->data) || !library) return fail(kFailedToSave);
    auto main = platform().dispatch->main();
    library->createAsset(std::move(*bytes), [main, answer, fail](bool success, std::optional<PlatformError>) {
      main->async([=] { success ? answer(Dict{{"success", true}}) : fail(kFailedToSave); });
    });
  });
}

}  // namespace

void SaveImageToGalleryHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto imageUrl = params.data.getString("imageUrl");
  if (!imageUrl) {
    answerFailure(params.callback, "DownloadFileJSAPIHandler: Failed to bind image download url!");
    return;
  }
  auto fail = [callback = params.callback](std::string_view message) { answerFailure(callback, message); };
  auto authorization = platform().authorization;
  if (!authorization) return fail("DownloadFileJSAPIHandler: Not authorized to access photo library");
  auto main = platform().dispatch->main();
  authorization->request(ProtectedResource::photoLibrary, [main, imageUrl = *imageUrl, callback = params.callback,
                                                           fail](AuthorizationState state) {
    // The answer may come on any thread; the work continues on the main queue.
    main->async([=] {
      switch (state) {
        case AuthorizationState::restricted:
          return fail("DownloadFileJSAPIHandler: Not authorized to access photo library");
        case AuthorizationState::denied:
          return fail("DownloadFileJSAPIHandler: Denied access to photo library");
        case AuthorizationState::authorized:
          return downloadAndSave(imageUrl, callback);
        default:
          return;  // not determined, limited or unknown: the page is not answered
      }
    });
  });
}

}  // namespace vantu
