#pragma once
// Real servers on 127.0.0.1 for the network tests: an HTTP server with a
// few routes, a TCP listener that answers garbage instead of HTTP, and a
// port that refuses connections.
//
// HTTP routes:
//   /status/N        status N, body "oops" (none for 204)
//   /binary          bytes that are not UTF-8
//   /echo            any method; answers "METHOD|X-Token header|body"
//   /slow            answers "late" after 2 seconds
//   /large?bytes=N   N bytes of a repeating pattern, streamed
//   /image.png       a 3 x 2 PNG
//   /redirect        302 to /status/200

#include <httplib.h>

#include <atomic>
#include <string>
#include <thread>

namespace vantu::testing_support {

/// The bytes /large serves at `offset`.
inline char largeByteAt(std::size_t offset) { return static_cast<char>('a' + offset % 26); }

std::string tinyPng();

class LoopbackHttpServer {
 public:
  LoopbackHttpServer();
  ~LoopbackHttpServer();
  std::string url(const std::string& path) const { return "http://127.0.0.1:" + std::to_string(port_) + path; }
  int requests() const { return requests_; }

 private:
  httplib::Server server_;
  int port_ = 0;
  std::atomic<int> requests_{0};
  std::thread thread_;
};

/// Accepts connections and writes a line that is not HTTP, then closes.
class GarbageListener {
 public:
  GarbageListener();
  ~GarbageListener();
  std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

 private:
  int socket_ = -1;
  int port_ = 0;
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

/// A URL on a loopback port that nothing listens on.
std::string refusedUrl();

}  // namespace vantu::testing_support
