#pragma once
// Keeps the fuzz targets' HTTP on this machine. Bridges such as
// "httpRequest" and "vantuDownloadFile" transfer whatever URL the input
// names; here every transfer goes to a small server on 127.0.0.1 instead
// (the URL's path and query are kept, so the input still chooses what the
// server answers). Nothing is ever resolved or sent beyond the loopback
// network, and no proxy from the environment is used.

#include <memory>
#include <string>
#include <string_view>

#include "vantu/platform/http_transport.h"

namespace vantu::fuzzing {

/// The port of the loopback server, started on first use. What it serves
/// (any method): "/image.png" a small PNG, "/redirect" a redirect to
/// "/image.png", "/status/<code>" that status, anything else a short text.
int loopbackServerPort();

/// `url` pointed at the loopback server on `port`: scheme, user info, host
/// and port replaced, path and query kept. A text that is no URL becomes
/// the server's "/no-url".
std::string onLoopback(std::string_view url, int port);

/// Forgets the proxy settings of the environment (libcurl reads them for
/// every transfer).
void ignoreProxyEnvironment();

/// An HTTP transport that hands every transfer to `inner` with its URL on
/// the loopback server.
class LoopbackOnlyTransport : public HttpTransport {
 public:
  explicit LoopbackOnlyTransport(std::shared_ptr<HttpTransport> inner);

 protected:
  void doStart(HttpTransfer transfer, Completion completion, MetricsHandler metrics) override;

 private:
  std::shared_ptr<HttpTransport> inner_;
  int port_;
};

}  // namespace vantu::fuzzing
