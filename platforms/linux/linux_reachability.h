#pragma once
// Reachability on Linux, over rtnetlink.
//
// Handles exist for the zero address only ("the internet in general"); a
// handle for another address or for a host name cannot be made, and the
// service answers nullptr as the port allows. The flags follow the rules in
// network_snapshot.h; the local-address and direct bits, which only matter
// for named targets, are never set.
//
// A handle with both a change callback and a queue attached runs a monitor
// thread that listens to the kernel's link, route and address change
// messages, reads the network again after each burst and, when the derived
// flags differ from the last ones it saw, posts the callback with them to
// the queue. Changing or clearing the callback or the queue stops that
// thread (closing its sockets and joining it) before anything else; a
// callback task still queued from before then does nothing when it runs.
// Attaching answers false when the monitor cannot be started (no rtnetlink
// socket can be opened).

#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

#include "platforms/linux/network_snapshot.h"
#include "vantu/platform/reachability.h"

namespace vantu::linux_platform {

class LinuxReachabilityHandle : public ReachabilityHandle,
                                public std::enable_shared_from_this<LinuxReachabilityHandle> {
 public:
  LinuxReachabilityHandle() = default;
  ~LinuxReachabilityHandle() override;
  LinuxReachabilityHandle(const LinuxReachabilityHandle&) = delete;
  LinuxReachabilityHandle& operator=(const LinuxReachabilityHandle&) = delete;

  /// Whether a monitor thread is running (tests).
  bool monitoring() const;

 protected:
  std::optional<ReachabilityFlags> doCurrentFlags() override;
  bool doSetCallback(Callback callback) override;
  bool doSetDispatchQueue(std::shared_ptr<SerialQueue> queue) override;

 private:
  struct Monitor;
  /// Stops the monitor, then starts one when both a callback and a queue
  /// are attached. Called with `controlMutex_` held. False when the monitor
  /// could not be started.
  bool restartMonitor();
  void stopMonitor();
  static void watch(Monitor& monitor, std::weak_ptr<LinuxReachabilityHandle> weak);
  void deliver(std::uint64_t generation, ReachabilityFlags flags);

  std::mutex controlMutex_;  // serialises attach / detach and monitor start / stop
  mutable std::mutex stateMutex_;
  Callback callback_;
  std::shared_ptr<SerialQueue> queue_;
  std::uint64_t generation_ = 0;
  std::unique_ptr<Monitor> monitor_;
};

class LinuxReachability : public Reachability {
 protected:
  std::shared_ptr<ReachabilityHandle> doHandleForAddress(const SocketAddress& address) override;
  std::shared_ptr<ReachabilityHandle> doHandleForHostname(const std::string& hostname) override;
};

}  // namespace vantu::linux_platform
