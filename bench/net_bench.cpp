// Network figures, printed (no assertions):
//  1. a large download through "vantuDownloadFile" against `curl -o` from
//     the same loopback server, in the same run: wall time, throughput and
//     the peak resident memory of each downloading process, for two sizes;
//  2. a small GET through "httpRequest" against a bare libcurl request
//     (one reused easy handle), per request.
//
// Usage: net_bench [large-bytes [small-requests]]
//        (1 GiB and 2000 by default; the second size is a quarter of the first).
// Internal: net_bench download URL DATA-DIR runs one download in a child.

#include <arpa/inet.h>
#include <curl/curl.h>
#include <httplib.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platforms/sim/sim_device.h"
#include "vantu/runtime/bridge_registry.h"
#include "vantu/value/json.h"

using namespace vantu;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

struct Run {
  double seconds = 0;
  long peakRssKiB = 0;
  bool ok = false;
};

/// Runs `argv` as a child process; its wall time and peak memory.
Run runChild(std::vector<std::string> argv) {
  const auto start = Clock::now();
  pid_t pid = fork();
  if (pid == 0) {
    std::vector<char*> args;
    for (auto& a : argv) args.push_back(a.data());
    args.push_back(nullptr);
    execvp(args[0], args.data());
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  wait4(pid, &status, 0, &usage);
  return {std::chrono::duration<double>(Clock::now() - start).count(), usage.ru_maxrss,
          WIFEXITED(status) && WEXITSTATUS(status) == 0};
}

/// The child side: one download through the bridge on a simulated device.
int downloadInChild(const std::string& url, const fs::path& dataDir) {
  sim::SimDevice device(dataDir);
  device.install();
  BridgeRegistry registry;
  registerAllBridges(registry);
  bool success = false;
  registry.dispatch("vantuDownloadFile",
                    H5HandlerInputParams(nullptr, Dict{{"fileName", "big.bin"}, {"fileDownloadUrl", url}},
                                         [&](const Value& answer) {
                                           success = answer.asDict()->getDict("data")->getBool("success") == true;
                                           if (!success) std::fprintf(stderr, "%s\n", json::write(answer).c_str());
                                         }));
  device.dispatch().settle(std::chrono::minutes(10));
  return success ? 0 : 1;
}

size_t discard(char*, size_t size, size_t count, void*) { return size * count; }

/// The loopback server of the small GETs: every request on a kept-alive
/// connection gets the same answer in one write. (A server that writes the
/// head and the body apart makes whichever client reads sooner wake twice,
/// which measures the server's timing rather than the clients.)
class OneWriteServer {
 public:
  OneWriteServer() {
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(listener_, reinterpret_cast<sockaddr*>(&address), length) != 0 || listen(listener_, 64) != 0 ||
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
      throw std::runtime_error("cannot listen on 127.0.0.1");
    }
    port_ = ntohs(address.sin_port);
    if (pipe(stop_) != 0) throw std::runtime_error("cannot make a pipe");
    thread_ = std::thread([this] { serve(); });
  }
  ~OneWriteServer() {
    (void)!write(stop_[1], "x", 1);
    thread_.join();
    close(listener_);
    close(stop_[0]);
    close(stop_[1]);
  }
  int port() const { return port_; }

 private:
  void serve() {
    static constexpr std::string_view kAnswer =
        "HTTP/1.1 200 OK\r\nContent-Type: application/octet-stream\r\nContent-Length: 27\r\n\r\n"
        R"({"ok":true,"items":[1,2,3]})";
    std::vector<pollfd> fds{{stop_[0], POLLIN, 0}, {listener_, POLLIN, 0}};
    std::vector<std::string> pending(2);
    char buffer[4096];
    for (;;) {
      poll(fds.data(), fds.size(), -1);
      if (fds[0].revents != 0) break;
      if (fds[1].revents != 0) {
        int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        int on = 1;
        setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        fds.push_back({client, POLLIN, 0});
        pending.emplace_back();
      }
      for (std::size_t i = 2; i < fds.size(); ++i) {
        if (fds[i].revents == 0) continue;
        ssize_t n = read(fds[i].fd, buffer, sizeof buffer);
        if (n > 0) {
          pending[i].append(buffer, static_cast<std::size_t>(n));
          for (std::size_t end; (end = pending[i].find("\r\n\r\n")) != std::string::npos;) {
            pending[i].erase(0, end + 4);
            (void)!write(fds[i].fd, kAnswer.data(), kAnswer.size());
          }
          continue;
        }
        close(fds[i].fd);
        fds.erase(fds.begin() + static_cast<std::ptrdiff_t>(i));
        pending.erase(pending.begin() + static_cast<std::ptrdiff_t>(i));
        --i;
      }
    }
    for (std::size_t i = 2; i < fds.size(); ++i) close(fds[i].fd);
  }

  int listener_ = -1;
  int stop_[2] = {-1, -1};
  int port_ = 0;
  std::thread thread_;
};

/// The faster of `rounds` runs (the first run of either tool may pay for
/// a page cache full of the other's file).
Run fastestOf(int rounds, const std::vector<std::string>& argv, const std::function<void()>& cleanUp) {
  Run best;
  for (int i = 0; i < rounds; ++i) {
    Run run = runChild(argv);
    cleanUp();
    if (i == 0 || (run.ok && run.seconds < best.seconds)) best = run;
  }
  return best;
}

void printRun(const char* tool, double mib, const Run& run) {
  std::printf("%-17s %8.0f MiB: %6.2f s, %7.1f MiB/s, peak RSS %6ld KiB%s\n", tool, mib, run.seconds,
              mib / run.seconds, run.peakRssKiB, run.ok ? "" : " (FAILED)");
}

void compareDownloads(const std::string& self, int port, std::uint64_t bytes, bool withCurl) {
  const fs::path dir = fs::temp_directory_path() / ("vantu-net-bench-" + std::to_string(getpid()));
  fs::remove_all(dir);
  fs::create_directories(dir);
  const std::string url = "http://127.0.0.1:" + std::to_string(port) + "/large?bytes=" + std::to_string(bytes);
  const double mib = static_cast<double>(bytes) / (1 << 20);
  const int rounds = withCurl ? 2 : 1;
  Run ours = fastestOf(rounds, {self, "download", url, dir.string()}, [&] { fs::remove_all(dir / "Documents"); });
  printRun("vantuDownloadFile", mib, ours);
  if (withCurl) {
    Run theirs = fastestOf(rounds, {"curl", "-s", "-o", (dir / "curl.bin").string(), url},
                           [&] { fs::remove(dir / "curl.bin"); });
    printRun("curl -o", mib, theirs);
    std::printf("throughput ratio vantu/curl (best of %d each): %.2f (goal: at least 0.90)\n", rounds,
                theirs.seconds / ours.seconds);
  }
  fs::remove_all(dir);
}

void compareSmallGets(int requests) {
  OneWriteServer server;
  const std::string url = "http://127.0.0.1:" + std::to_string(server.port()) + "/small";
  // Bare libcurl, asking for compressed answers as the transport does: with
  // one easy handle reused (keeps its connection), and with a fresh handle
  // per request (connections are then not kept).
  CURL* reused = curl_easy_init();
  auto bareRequests = [&](int count, bool reuse) {
    auto start = Clock::now();
    for (int i = 0; i < count; ++i) {
      CURL* easy = reuse ? reused : curl_easy_init();
      curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
      curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
      curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &discard);
      curl_easy_perform(easy);
      if (!reuse) curl_easy_cleanup(easy);
    }
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count() / count;
  };

  sim::SimDevice device;
  device.install();
  BridgeRegistry registry;
  registerAllBridges(registry);
  int answered = 0;
  auto bridgeRequests = [&](int count) {
    auto start = Clock::now();
    for (int i = 0; i < count; ++i) {
      registry.dispatch("httpRequest", H5HandlerInputParams(nullptr, Dict{{"url", url}, {"method", "GET"}},
                                                            [&](const Value&) { ++answered;}));
      device.dispatch().settle(std::chrono::seconds(30));
    }
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count() / count;
  };

  // Short rounds taken in turns, best round of each: a busy moment of the
  // machine then spoils one round of one side, not the comparison.
  constexpr int kRounds = 10;
  const int perRound = std::max(1, requests / kRounds);
  double bare = 1e300, fresh = 1e300, ours = 1e300;
  for (int round = 0; round < kRounds; ++round) {
    bare = std::min(bare, bareRequests(perRound, true));
    ours = std::min(ours, bridgeRequests(perRound));
    fresh = std::min(fresh, bareRequests(perRound, false));
  }
  curl_easy_cleanup(reused);
  std::printf("small GET, best of %d rounds of %d: httpRequest %.1f us; bare libcurl %.1f us reusing its handle "
              "(overhead %+.1f%%), %.1f us with a fresh handle (overhead %+.1f%%) (goal: under 20%%)%s\n",
              kRounds, perRound, ours, bare, 100.0 * (ours - bare) / bare, fresh, 100.0 * (ours - fresh) / fresh,
              answered == perRound * kRounds ? "" : " (MISSING ANSWERS)");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::string(argv[1]) == "download") return downloadInChild(argv[2], argv[3]);
  const std::uint64_t large = argc > 1 ? std::stoull(argv[1]) : (std::uint64_t{1} << 30);
  const int small = argc > 2 ? std::stoi(argv[2]) : 2000;

  std::string pattern(1 << 20, ' ');
  for (std::size_t i = 0; i < pattern.size(); ++i) pattern[i] = static_cast<char>('a' + i % 26);
  httplib::Server server;
  server.Get("/large", [&](const httplib::Request& req, httplib::Response& res) {
    res.set_content_provider(std::stoull(req.get_param_value("bytes")), "application/octet-stream",
                             [&](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                               const std::size_t at = offset % pattern.size();
                               return sink.write(pattern.data() + at, std::min(length, pattern.size() - at));
                             });
  });
  const int port = server.bind_to_any_port("127.0.0.1");
  std::thread thread([&] { server.listen_after_bind(); });
  while (!server.is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(1));

  compareDownloads(argv[0], port, large, true);
  compareDownloads(argv[0], port, large / 4, false);
  compareSmallGets(small);

  server.stop();
  thread.join();
  return 0;
}
