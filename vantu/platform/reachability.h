#pragma once
// Reachability port: handles that watch whether a target (the zero address,
// meaning the internet in general, or a host name) can be reached, and over
// which kind of link. A handle reports its current flags on request and, once
// a change callback and a queue are attached, calls the callback on that
// queue with the new flags whenever they change.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "vantu/platform/dispatch.h"

namespace vantu {

/// The platform's reachability flag word.
using ReachabilityFlags = std::uint32_t;

/// The flag bits, at the platform's published values.
namespace reachability_flag {
inline constexpr ReachabilityFlags kTransientConnection = 1u << 0;
inline constexpr ReachabilityFlags kReachable = 1u << 1;
inline constexpr ReachabilityFlags kConnectionRequired = 1u << 2;
inline constexpr ReachabilityFlags kConnectionOnTraffic = 1u << 3;
inline constexpr ReachabilityFlags kInterventionRequired = 1u << 4;
inline constexpr ReachabilityFlags kConnectionOnDemand = 1u << 5;
inline constexpr ReachabilityFlags kIsLocalAddress = 1u << 16;
inline constexpr ReachabilityFlags kIsDirect = 1u << 17;
inline constexpr ReachabilityFlags kIsWWAN = 1u << 18;
}  // namespace reachability_flag

/// An IPv4 socket address record as the reachability service takes it.
struct SocketAddress {
  std::uint8_t length = 16;
  std::uint8_t family = 2;  // IPv4
  std::uint16_t port = 0;
  std::uint32_t address = 0;

  /// 0.0.0.0, port 0: "the internet in general".
  static constexpr SocketAddress zeroIPv4() { return SocketAddress{}; }
  bool operator==(const SocketAddress&) const = default;
};

class ReachabilityHandle {
 public:
  /// Receives the new flags, on the queue attached with `setDispatchQueue`.
  using Callback = std::function<void(ReachabilityFlags)>;

  virtual ~ReachabilityHandle() = default;

  /// The flags now; nothing when the platform cannot tell.
  std::optional<ReachabilityFlags> currentFlags() { return doCurrentFlags(); }
  /// Registers the change callback (an empty one unregisters). False when
  /// the platform refuses.
  bool setCallback(Callback callback) { return doSetCallback(std::move(callback)); }
  /// Sets the queue the callback runs on (nullptr detaches). False when the
  /// platform refuses.
  bool setDispatchQueue(std::shared_ptr<SerialQueue> queue) { return doSetDispatchQueue(std::move(queue)); }

 protected:
  virtual std::optional<ReachabilityFlags> doCurrentFlags() = 0;
  virtual bool doSetCallback(Callback callback) = 0;
  virtual bool doSetDispatchQueue(std::shared_ptr<SerialQueue> queue) = 0;
};

class Reachability {
 public:
  virtual ~Reachability() = default;

  /// A handle for `address`, or nullptr when the platform cannot make one.
  std::shared_ptr<ReachabilityHandle> handleForAddress(const SocketAddress& address) {
    return doHandleForAddress(address);
  }
  /// A handle for a host name, or nullptr when the platform cannot make one.
  std::shared_ptr<ReachabilityHandle> handleForHostname(const std::string& hostname) {
    return doHandleForHostname(hostname);
  }

 protected:
  virtual std::shared_ptr<ReachabilityHandle> doHandleForAddress(const SocketAddress& address) = 0;
  virtual std::shared_ptr<ReachabilityHandle> doHandleForHostname(const std::string& hostname) = 0;
};

}  // namespace vantu
