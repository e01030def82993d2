#include "vantu/net/download_file_handler.h"

#include <fmt/format.h>

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/core/url.h"
#include "vantu/net/download_folder.h"
#include "vantu/platform/platform.h"

namespace vantu {
namespace {

constexpr double kDownloadTimeoutSeconds = 30;
constexpr std::size_t kPartialNameLength = 16;

Dict downloadResult(const std::string& fileName, const std::string& url, std::optional<Dict> error,
                    std::string filePath = {}) {
  Dict result{{"fileName", fileName}, {"fileDownloadUrl", url}};
  const bool success = !error;
  if (error) result.set("error", std::move(*error));
  result.set("success", success);
  result.set("filePath", std::move(filePath));
  return result;
}

Dict errorOf(std::int64_t code, std::string message) { return Dict{{"code", code}, {"message", std::move(message)}}; }

}  // namespace

void DownloadFileHandler::handleWith(H5HandlerInputParams params) {
  trackData(kBridgeName, params);
  auto fileName = params.data.getString("fileName");
  if (!fileName || !isSingleFileName(*fileName)) {
    answerFailure(params.callback, "DownloadFileJSAPIHandler: Failed to bind fileName!");
    return;
  }
  auto url = params.data.getString("fileDownloadUrl");
  if (!url) {
    answerFailure(params.callback, "DownloadFileJSAPIHandler: Failed to bind download url!");
    return;
  }
  const bool showIndicator = params.data.getString("showNetworkActivityIndicator") == "true";
  auto application = platform().application;
  if (showIndicator && application) application->setNetworkActivityIndicatorVisible(true);
  auto answer = [=, callback = params.callback](std::optional<Dict> error, std::string filePath = {}) {
    if (showIndicator && application) application->setNetworkActivityIndicatorVisible(false);
    callback(payload::success(downloadResult(*fileName, *url, std::move(error), std::move(filePath))));
  };

  if (!Url::parse(*url)) return answer(errorOf(10, "Valid URL could not be formulated."));
  auto transport = platform().httpTransport;
  if (!transport) return answer(errorOf(-1, "No HTTP transport is available."));
  auto destination = DownloadFolder::locationOf(*fileName);
  const std::string partialName = "." + randomFileName(kPartialNameLength) + ".partial";
  auto partial = DownloadFolder::locationOf(partialName);
  if (!destination || !partial) return answer(errorOf(11, "The download folder is not available."));

  UrlRequest request;
  request.url = *url;
  request.timeoutSeconds = kDownloadTimeoutSeconds;
  // The page's progress listener hears of the body as it arrives.
  transport->start(HttpTransfer{std::move(request), *partial, params.progress},
                   [answer, destination = *destination, partialName](HttpTransferResult result) {
                     auto discard = [&] {
                       if (result.file) DownloadFolder::remove(partialName);
                     };
                     if (result.error) {
                       discard();
                       return answer(errorOf(result.error->code, result.error->localizedDescription));
                     }
                     if (!result.httpResponse) {
                       discard();
                       return answer(errorOf(13, "Bad Response received."));
                     }
                     if (result.httpResponse->statusCode != 200) {
                       discard();
                       // Two spaces before the number: the text ends in one and the format adds one.
                       return answer(errorOf(1, fmt::format("{} {}", "The server returned a not OK HTTP Response Code: ",
                                                            result.httpResponse->statusCode)));
                     }
                     if (auto moveError = moveWithoutReplacing(*result.file, destination)) {
                       discard();
                       return answer(errorOf(11, moveError->localizedDescription));
                     }
                     answer(std::nullopt, destination.string());
                   });
}

}  // namespace vantu
