#pragma once
// What the Linux reachability port knows of the network: the interfaces and
// the default routes of the main routing table, read over rtnetlink, and the
// reachability flags derived from them.
//
// Flag rules (see docs/linux-platform.md):
// - reachable: some default route (IPv4 or IPv6, unicast) leaves through an
//   interface that is up and running (IFF_UP and IFF_RUNNING) and is not a
//   loopback;
// - is WWAN: the route the kernel prefers among those (lowest metric; IPv4
//   before IPv6 on a tie, then the lower interface index) leaves through a
//   cellular modem: an interface whose name starts with "ww" ("wwan0", and
//   the "wwp..." names of predictable interface naming) or whose link type
//   is raw IP (ARPHRD_RAWIP, the mode of QMI/MBIM modems). Point-to-point
//   types without a hardware address (ARPHRD_NONE, ARPHRD_PPP) are not taken
//   as cellular: VPN tunnels and DSL links use them too.
// No other flag is ever set.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "vantu/platform/reachability.h"

namespace vantu::linux_platform {

struct NetworkInterface {
  int index = 0;
  std::string name;
  unsigned flags = 0;          // IFF_* bits
  unsigned short type = 0;     // ARPHRD_* link type
  bool operator==(const NetworkInterface&) const = default;
};

struct DefaultRoute {
  int family = 0;              // AF_INET or AF_INET6
  int interfaceIndex = 0;      // one entry per next hop of a multipath route
  std::uint32_t metric = 0;
  bool operator==(const DefaultRoute&) const = default;
};

struct NetworkSnapshot {
  std::vector<NetworkInterface> interfaces;
  std::vector<DefaultRoute> defaultRoutes;

  const NetworkInterface* interfaceAt(int index) const;
};

/// Whether `interface` is taken as a cellular modem (rule above).
bool isCellularInterface(const NetworkInterface& interface);
/// Whether a route through `interface` can carry traffic now.
bool isUsableInterface(const NetworkInterface& interface);
/// The reachability flags of `snapshot` (rules above).
ReachabilityFlags deriveFlags(const NetworkSnapshot& snapshot);

/// Adds what the rtnetlink messages in `buffer` describe: RTM_NEWLINK
/// messages add interfaces; RTM_NEWROUTE messages that are unicast default
/// routes of the main table add one route per next hop. Other messages are
/// ignored; a truncated message ends the parse. Returns false when the
/// buffer holds an error message or a message whose length is malformed.
bool addNetlinkMessages(std::span<const std::byte> buffer, NetworkSnapshot& snapshot);

/// Reads the interfaces and default routes of the calling thread's network
/// namespace. Nothing when rtnetlink cannot be used.
std::optional<NetworkSnapshot> readNetworkSnapshot();

/// A socket subscribed to link, route and address changes, with a wake-up
/// descriptor so a thread waiting on it can be released. Move-only; closes
/// both descriptors when destroyed.
class NetworkChangeSocket {
 public:
  /// Nothing when the socket cannot be opened.
  static std::optional<NetworkChangeSocket> open();
  NetworkChangeSocket(NetworkChangeSocket&& other) noexcept;
  NetworkChangeSocket& operator=(NetworkChangeSocket&& other) noexcept;
  NetworkChangeSocket(const NetworkChangeSocket&) = delete;
  NetworkChangeSocket& operator=(const NetworkChangeSocket&) = delete;
  ~NetworkChangeSocket();

  enum class Wait { changed, woken, failed };
  /// Blocks until change messages arrive (all pending ones are consumed; a
  /// receive-buffer overrun counts as a change) or `wake()` is called.
  Wait waitForChange();
  /// Releases a waiter, now or at its next wait. Callable from any thread.
  void wake();

 private:
  NetworkChangeSocket(int netlink, int event) : netlink_(netlink), event_(event) {}
  void close();
  int netlink_ = -1;
  int event_ = -1;
};

}  // namespace vantu::linux_platform
