#pragma once
// Network bridges against real servers on 127.0.0.1, called from a screen
// "page" whose host delegate "host" records every call, and from a screen
// "bare" without one. Calls wait (in real time) for their transfers.
//
// LoopbackHttpServer routes:
//   /status/N        status N, body "oops" (none for 204)
//   /binary          bytes that are not UTF-8
//   /echo            any method; answers "METHOD|X-Token header|body"
//   /slow            answers "late" after 2 seconds
//   /large?bytes=N   N bytes of largeByteAt(offset), streamed
//   /image.png       a 3 x 2 PNG
//   /redirect        302 to /status/200

#include <httplib.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>

#include "tests/support/bridge_test_fixture.h"

namespace vantu::testing_support {

inline char largeByteAt(std::size_t offset) { return static_cast<char>('a' + offset % 26); }

class LoopbackHttpServer {
 public:
  LoopbackHttpServer();
  ~LoopbackHttpServer() { server_.stop(), thread_.join(); }
  std::string url(const std::string& path) const { return "http://127.0.0.1:" + std::to_string(port_) + path; }
  int requests() const { return requests_; }

 private:
  httplib::Server server_;
  int port_ = 0;
  std::atomic<int> requests_{0};
  std::thread thread_;
};

/// Answers every connection with a line that is not HTTP, then closes it.
class GarbageListener {
 public:
  GarbageListener();
  ~GarbageListener();
  std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

 private:
  int socket_ = -1;
  int port_ = 0;
  std::thread thread_;
};

/// A URL on a loopback port that nothing listens on.
std::string refusedUrl();

class NetFixture : public BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    apply(R"({"delegates": {"host": {}},
              "screens": [{"name": "page", "delegate": "host", "uniqueAppIdentifier": "mini.net"}, {"name": "bare"}]})");
  }

  /// Calls `bridge` and waits until every transfer it started has reported.
  CallOutcome callAndWait(std::string_view bridge, const Dict& data, std::string_view screen = "page") {
    CallOutcome outcome = call(bridge, data, screen);
    EXPECT_TRUE(device.dispatch().settle(std::chrono::seconds(20)));
    CallOutcome later = collect();
    for (auto [all, more] : {std::pair{&outcome.answers, &later.answers}, {&outcome.reported, &later.reported},
                             {&outcome.hostCalls, &later.hostCalls}, {&outcome.effects, &later.effects}}) {
      all->insert(all->end(), more->begin(), more->end());
    }
    return outcome;
  }
  CallOutcome callAndWait(std::string_view bridge, std::string_view dataJson, std::string_view screen = "page") {
    return callAndWait(bridge, dataOf(dataJson), screen);
  }

  /// The one answer of `outcome`, parsed.
  static Dict answerOf(const CallOutcome& outcome) {
    EXPECT_EQ(outcome.answers.size(), 1u);
    if (outcome.answers.size() != 1) return {};
    auto parsed = json::parse(outcome.answers[0]);
    return parsed.ok() && parsed.value().isDict() ? *parsed.value().asDict() : Dict{};
  }

  std::filesystem::path downloads() const { return device.platformBundle()->documentsDirectory / "H5DOWNLOADS"; }

  LoopbackHttpServer server;
};

}  // namespace vantu::testing_support
