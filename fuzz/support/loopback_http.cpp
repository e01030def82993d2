#include "fuzz/support/loopback_http.h"

#include <curl/curl.h>
#include <httplib.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <thread>

namespace vantu::fuzzing {
namespace {

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class LoopbackServer {
 public:
  LoopbackServer() {
    using httplib::Request;
    using httplib::Response;
    const std::string png = readFile(VANTU_FUZZ_FILES "/photo.png");
    const auto answer = [png](const Request& request, Response& response) {
      const std::string& path = request.path;
      if (path == "/image.png") {
        response.set_content(png, "image/png");
      } else if (path == "/redirect") {
        response.set_redirect("/image.png");
      } else if (path.starts_with("/status/")) {
        const int status = std::atoi(path.c_str() + 8);
        response.status = status >= 100 && status <= 599 ? status : 400;
        response.set_content("status", "text/plain");
      } else {
        response.set_content(request.method + " " + path, "text/plain");
      }
    };
    const char* any = ".*";
    server_.Get(any, answer).Post(any, answer).Put(any, answer).Patch(any, answer).Delete(any, answer).Options(any, answer);
    // Never keep a client waiting: a request that announces more body than
    // it sends is dropped after a moment.
    server_.set_read_timeout(0, 200000);
    server_.set_keep_alive_max_count(1);
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) std::this_thread::yield();
  }
  // Lives as long as the process: fuzz targets end by exiting.
  ~LoopbackServer() = delete;

  int port() const { return port_; }

 private:
  httplib::Server server_;
  std::thread thread_;
  int port_ = 0;
};

}  // namespace

int loopbackServerPort() {
  static LoopbackServer* server = new LoopbackServer();
  return server->port();
}

namespace {

std::optional<std::string> part(CURLU* parts, CURLUPart which) {
  char* text = nullptr;
  if (curl_url_get(parts, which, &text, 0) != CURLUE_OK) return std::nullopt;
  std::string copy(text);
  curl_free(text);
  return copy;
}

// Whether `url` is exactly what libcurl will connect to: 127.0.0.1:`port`.
bool staysOnLoopback(const std::string& url, int port) {
  CURLU* parts = curl_url();
  const bool ok = parts && curl_url_set(parts, CURLUPART_URL, url.c_str(), 0) == CURLUE_OK &&
                  part(parts, CURLUPART_HOST) == "127.0.0.1" && part(parts, CURLUPART_PORT) == std::to_string(port);
  curl_url_cleanup(parts);
  return ok;
}

}  // namespace

std::string onLoopback(std::string_view url, int port) {
  const std::string server = "http://127.0.0.1:" + std::to_string(port);
  std::string target = server + "/no-url";
  CURLU* parts = curl_url();
  if (parts && curl_url_set(parts, CURLUPART_URL, std::string(url).c_str(), CURLU_NON_SUPPORT_SCHEME) == CURLUE_OK) {
    if (auto path = part(parts, CURLUPART_PATH)) {
      // A path of a URL of another scheme may lack the leading "/": without
      // it the path would extend the port, or start an authority.
      target = server + (path->starts_with('/') ? "" : "/") + *path;
      if (auto query = part(parts, CURLUPART_QUERY)) target += "?" + *query;
    }
  }
  curl_url_cleanup(parts);
  return staysOnLoopback(target, port) ? target : server + "/no-url";
}

void ignoreProxyEnvironment() {
  for (const char* name : {"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
    ::unsetenv(name);
  }
  ::setenv("no_proxy", "*", 1);
}

LoopbackOnlyTransport::LoopbackOnlyTransport(std::shared_ptr<HttpTransport> inner)
    : inner_(std::move(inner)), port_(loopbackServerPort()) {}

void LoopbackOnlyTransport::doStart(HttpTransfer transfer, Completion completion, MetricsHandler metrics) {
  transfer.request.url = onLoopback(transfer.request.url, port_);
  inner_->start(std::move(transfer), std::move(completion), std::move(metrics));
}

}  // namespace vantu::fuzzing
