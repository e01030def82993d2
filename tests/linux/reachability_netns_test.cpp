// Reachability against a real kernel: a forked child moves into a network
// namespace of its own (only a loopback interface, down), changes its links
// and routes with iproute2, and checks the flags and the notifier after each
// step. The runner's own namespace, and so the machine's network, is never
// touched. Needs root and unshare(CLONE_NEWNET); skipped otherwise. The child
// reports what went wrong through a pipe and its exit status.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platforms/linux/linux_platform.h"
#include "vantu/net/h5_reachability.h"

namespace vantu::linux_platform {
namespace {

namespace flag = reachability_flag;
using namespace std::chrono_literals;

constexpr int kPassed = 0, kFailed = 1, kSkipped = 77;

/// What the child tells its parent.
struct Report {
  void say(const std::string& line) {
    std::string text = line + "\n";
    [[maybe_unused]] auto written = ::write(fd, text.data(), text.size());
  }
  bool check(bool ok, const std::string& what) {
    if (!ok) failed = true, say(what);
    return ok;
  }
  int fd;
  bool failed = false;
};

/// Runs `ip ARGS` (output discarded); true when it succeeded.
bool ip(const std::string& args) {
  int status = std::system(("ip " + args + " >/dev/null 2>&1").c_str());
  return status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

int exercise(Report& report) {
  if (geteuid() != 0) return report.say("needs root"), kSkipped;
  if (unshare(CLONE_NEWNET) != 0) return report.say(std::string("unshare: ") + std::strerror(errno)), kSkipped;
  if (!ip("link show lo")) return report.say("the ip command (iproute2) is not available"), kSkipped;

  auto bundle = makeLinuxPlatform();
  installPlatform(bundle.platform);
  auto& loop = *bundle.loop;

  auto handle = bundle.platform->reachability->handleForAddress(SocketAddress::zeroIPv4());
  if (!report.check(handle != nullptr, "no handle for the zero address")) return kFailed;
  auto flagsNow = [&] { return handle->currentFlags(); };
  report.check(flagsNow() == ReachabilityFlags{0}, "a fresh namespace must not be reachable");

  auto made = H5Reachability::makeForInternet();
  if (!report.check(made.ok(), "makeForInternet failed")) return kFailed;
  auto monitor = made.value();
  std::vector<std::string> events;  // main queue only
  monitor->whenReachable = [&](H5Reachability& r) {
    events.push_back("reachable " + r.currentReachabilityString() + " " + r.description());
  };
  monitor->whenUnreachable = [&](H5Reachability& r) { events.push_back("unreachable " + r.description()); };
  int posted = 0;
  auto token = bundle.platform->notificationCenter->addObserver(std::string(kReachabilityChangedNotification),
                                                                [&](const Notification&) { ++posted; });
  report.check(!monitor->startNotifier().has_value(), "startNotifier failed");

  auto waitForEvents = [&](std::size_t count, const std::string& step) {
    bool arrived = loop.runUntil([&] { return events.size() >= count && posted >= static_cast<int>(count); }, 15s);
    return report.check(arrived, "no notification after: " + step);
  };
  waitForEvents(1, "startNotifier");

  // Each step: the ip commands, the flags after them, and whether a
  // notification follows. Changes that leave the flags as they were
  // (loopback up, addresses, the peer interfaces) must not be reported.
  const ReachabilityFlags R = flag::kReachable, W = flag::kReachable | flag::kIsWWAN;
  const struct {
    std::vector<std::string> commands;
    ReachabilityFlags flags;
    bool notifies;
  } steps[] = {
      {{"link set lo up"}, 0, false},
      {{"link add v0 type veth peer name v1", "addr add 10.99.0.2/24 dev v0", "link set v1 up", "link set v0 up"}, 0,
       false},
      {{"route add default via 10.99.0.1"}, R, true},
      {{"route del default"}, 0, true},
      {{"-6 route add default dev v0"}, R, true},
      {{"link set v0 down"}, 0, true},
      {{"link add wwan0 type veth peer name wwpeer", "link set wwpeer up", "link set wwan0 up",
        "addr add 10.98.0.2/24 dev wwan0", "route add default via 10.98.0.1"},
       W, true},
      {{"link del wwan0"}, 0, true},
  };
  std::size_t expectedCount = 1;
  for (const auto& step : steps) {
    std::string what;
    for (const auto& args : step.commands) what += "; ip " + args, report.check(ip(args), "ip " + args + " failed");
    report.check(flagsNow() == step.flags, "unexpected flags after" + what);
    if (step.notifies) waitForEvents(++expectedCount, what);
  }

  std::vector<std::string> expected{
      "unreachable -- -------",       "reachable WiFi -R -------", "unreachable -- -------",
      "reachable WiFi -R -------",    "unreachable -- -------",    "reachable Cellular WR -------",
      "unreachable -- -------",
  };
  if (!report.check(events == expected, "notifications differ from the expected sequence")) {
    for (const auto& e : events) report.say("  got: " + e);
  }
  monitor->stopNotifier();
  return report.failed ? kFailed : kPassed;
}

TEST(ReachabilityInNetworkNamespace, FlagsAndNotificationsFollowTheDefaultRoute) {
  int fds[2];
  ASSERT_EQ(pipe2(fds, O_CLOEXEC), 0);
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    close(fds[0]);
    alarm(150);  // never outlive the test's own time limit
    Report report{fds[1]};
    _exit(exercise(report));  // no exit handlers, no leak check of a half-torn-down child
  }
  close(fds[1]);
  std::string output;
  char buffer[512];
  for (ssize_t got; (got = read(fds[0], buffer, sizeof buffer)) != 0;) {
    if (got > 0) output.append(buffer, static_cast<std::size_t>(got));
    else if (errno != EINTR) break;
  }
  close(fds[0]);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  if (WIFSIGNALED(status)) FAIL() << "the child died of signal " << WTERMSIG(status) << "\n" << output;
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == kSkipped) GTEST_SKIP() << output;
  EXPECT_EQ(WEXITSTATUS(status), kPassed) << output;
  EXPECT_EQ(output, "");
}

}  // namespace
}  // namespace vantu::linux_platform
