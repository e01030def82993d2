#pragma once
// Reachability on the simulated device: one network state (the flag word the
// scenario sets) seen by every handle. Changing it calls, on its queue, the
// callback of every handle that has both a callback and a queue attached.
// Tests can also make the service refuse what a platform may refuse.

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "vantu/platform/reachability.h"

namespace vantu::sim {

class SimReachabilityHandle;

class SimReachability : public Reachability, public std::enable_shared_from_this<SimReachability> {
 public:
  /// Wi-Fi: reachable, nothing else.
  static constexpr ReachabilityFlags kDefaultFlags = reachability_flag::kReachable;

  ReachabilityFlags flags() const { return flags_; }
  /// Sets the network state; when it differs from the current one, every
  /// watching handle's callback is posted to its queue with the new flags.
  void setFlags(ReachabilityFlags flags);

  /// No handle can be made (the platform refuses).
  bool unavailable = false;
  // Failures a platform may report, for tests.
  bool refuseCallback = false;
  bool refuseQueue = false;
  bool flagsUnknown = false;

  /// How many times a (non-empty) change callback was registered.
  std::size_t callbackRegistrations() const { return callbackRegistrations_; }
  /// Handles alive with a change callback registered.
  std::size_t attachedCallbacks() const;
  /// Handles alive with both a callback and a queue attached.
  std::size_t watchingHandles() const;
  /// Targets handles were made for, in order ("0.0.0.0" for the zero address).
  const std::vector<std::string>& targets() const { return targets_; }

 protected:
  std::shared_ptr<ReachabilityHandle> doHandleForAddress(const SocketAddress& address) override;
  std::shared_ptr<ReachabilityHandle> doHandleForHostname(const std::string& hostname) override;

 private:
  friend class SimReachabilityHandle;
  std::shared_ptr<ReachabilityHandle> makeHandle(std::string target);

  ReachabilityFlags flags_ = kDefaultFlags;
  std::size_t callbackRegistrations_ = 0;
  std::vector<std::string> targets_;
  std::vector<std::weak_ptr<SimReachabilityHandle>> handles_;
};

}  // namespace vantu::sim
