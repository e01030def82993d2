#include "platforms/linux/network_snapshot.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#ifndef ARPHRD_RAWIP
#define ARPHRD_RAWIP 519
#endif

namespace vantu::linux_platform {

namespace {

template <typename T>
T readAt(std::span<const std::byte> buffer, std::size_t offset) {
  T value{};
  std::memcpy(&value, buffer.data() + offset, sizeof(T));
  return value;
}

constexpr std::size_t align4(std::size_t n) { return (n + 3) & ~std::size_t{3}; }

/// Calls `visit(type, payload)` for each route/link attribute in `attrs`.
template <typename Visit>
void forEachAttribute(std::span<const std::byte> attrs, Visit&& visit) {
  std::size_t offset = 0;
  while (offset + sizeof(rtattr) <= attrs.size()) {
    auto attr = readAt<rtattr>(attrs, offset);
    if (attr.rta_len < sizeof(rtattr) || offset + attr.rta_len > attrs.size()) return;
    visit(attr.rta_type & NLA_TYPE_MASK, attrs.subspan(offset + RTA_LENGTH(0), attr.rta_len - RTA_LENGTH(0)));
    offset += align4(attr.rta_len);
  }
}

std::uint32_t u32Of(std::span<const std::byte> payload) {
  return payload.size() >= 4 ? readAt<std::uint32_t>(payload, 0) : 0;
}

void addLink(std::span<const std::byte> body, NetworkSnapshot& snapshot) {
  if (body.size() < sizeof(ifinfomsg)) return;
  auto info = readAt<ifinfomsg>(body, 0);
  NetworkInterface interface;
  interface.index = info.ifi_index;
  interface.flags = info.ifi_flags;
  interface.type = info.ifi_type;
  forEachAttribute(body.subspan(NLMSG_ALIGN(sizeof(ifinfomsg))), [&](unsigned type, std::span<const std::byte> p) {
    if (type != IFLA_IFNAME) return;
    auto text = reinterpret_cast<const char*>(p.data());
    interface.name.assign(text, strnlen(text, p.size()));
  });
  // A later message about the same interface replaces the earlier one.
  std::erase_if(snapshot.interfaces, [&](const auto& known) { return known.index == interface.index; });
  snapshot.interfaces.push_back(std::move(interface));
}

void addRoute(std::span<const std::byte> body, NetworkSnapshot& snapshot) {
  if (body.size() < sizeof(rtmsg)) return;
  auto route = readAt<rtmsg>(body, 0);
  if (route.rtm_family != AF_INET && route.rtm_family != AF_INET6) return;
  if (route.rtm_dst_len != 0 || route.rtm_type != RTN_UNICAST) return;
  std::uint32_t table = route.rtm_table;
  std::uint32_t metric = 0;
  int oif = 0;
  std::vector<int> hops;
  forEachAttribute(body.subspan(NLMSG_ALIGN(sizeof(rtmsg))), [&](unsigned type, std::span<const std::byte> p) {
    switch (type) {
      case RTA_TABLE:
        table = u32Of(p);
        break;
      case RTA_PRIORITY:
        metric = u32Of(p);
        break;
      case RTA_OIF:
        oif = static_cast<int>(u32Of(p));
        break;
      case RTA_MULTIPATH: {
        std::size_t offset = 0;
        while (offset + sizeof(rtnexthop) <= p.size()) {
          auto hop = readAt<rtnexthop>(p, offset);
          if (hop.rtnh_len < sizeof(rtnexthop) || offset + hop.rtnh_len > p.size()) break;
          if (!(hop.rtnh_flags & RTNH_F_DEAD)) hops.push_back(hop.rtnh_ifindex);
          offset += RTNH_ALIGN(hop.rtnh_len);
        }
        break;
      }
      default:
        break;
    }
  });
  if (table != RT_TABLE_MAIN) return;
  if (oif != 0) hops.push_back(oif);
  for (int index : hops) snapshot.defaultRoutes.push_back(DefaultRoute{route.rtm_family, index, metric});
}

enum class Parse { more, done, interrupted, failed };

/// Parses one received buffer. `error` receives the errno of an error
/// message. Messages whose sequence number is not `sequence` are skipped
/// (unless `sequence` is 0).
Parse parseMessages(std::span<const std::byte> buffer, NetworkSnapshot& snapshot, std::uint32_t sequence,
                    int& error) {
  bool interrupted = false;
  std::size_t offset = 0;
  while (offset + sizeof(nlmsghdr) <= buffer.size()) {
    auto header = readAt<nlmsghdr>(buffer, offset);
    if (header.nlmsg_len < sizeof(nlmsghdr)) return Parse::failed;
    if (offset + header.nlmsg_len > buffer.size()) break;  // truncated
    auto body = buffer.subspan(offset + NLMSG_HDRLEN, header.nlmsg_len - NLMSG_HDRLEN);
    offset += NLMSG_ALIGN(header.nlmsg_len);
    if (sequence != 0 && header.nlmsg_seq != sequence) continue;
    if (header.nlmsg_flags & NLM_F_DUMP_INTR) interrupted = true;
    switch (header.nlmsg_type) {
      case NLMSG_DONE:
        return interrupted ? Parse::interrupted : Parse::done;
      case NLMSG_ERROR: {
        if (body.size() < sizeof(nlmsgerr)) return Parse::failed;
        auto e = readAt<nlmsgerr>(body, 0);
        if (e.error == 0) continue;  // an acknowledgement
        error = -e.error;
        return Parse::failed;
      }
      case RTM_NEWLINK:
        addLink(body, snapshot);
        break;
      case RTM_NEWROUTE:
        addRoute(body, snapshot);
        break;
      default:
        break;
    }
  }
  return interrupted ? Parse::interrupted : Parse::more;
}

class Fd {
 public:
  explicit Fd(int fd) : fd_(fd) {}
  ~Fd() {
    if (fd_ >= 0) ::close(fd_);
  }
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;
  int get() const { return fd_; }

 private:
  int fd_;
};

constexpr std::size_t kReceiveBuffer = 64 * 1024;

/// Sends one dump request and adds its answer to `snapshot`.
Parse dump(int fd, std::uint16_t type, unsigned char family, std::uint32_t sequence, NetworkSnapshot& snapshot,
           int& error) {
  struct {
    nlmsghdr header;
    union {
      ifinfomsg link;
      rtmsg route;
    } body;
  } request{};
  std::size_t bodySize = type == RTM_GETLINK ? sizeof(ifinfomsg) : sizeof(rtmsg);
  request.header.nlmsg_len = NLMSG_LENGTH(bodySize);
  request.header.nlmsg_type = type;
  request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  request.header.nlmsg_seq = sequence;
  if (type == RTM_GETLINK) {
    request.body.link.ifi_family = family;
  } else {
    request.body.route.rtm_family = family;
  }
  sockaddr_nl kernel{};
  kernel.nl_family = AF_NETLINK;
  if (sendto(fd, &request, request.header.nlmsg_len, 0, reinterpret_cast<sockaddr*>(&kernel), sizeof kernel) < 0) {
    error = errno;
    return Parse::failed;
  }
  std::vector<std::byte> buffer(kReceiveBuffer);
  bool interrupted = false;
  for (;;) {
    sockaddr_nl from{};
    iovec io{buffer.data(), buffer.size()};
    msghdr message{};
    message.msg_name = &from;
    message.msg_namelen = sizeof from;
    message.msg_iov = &io;
    message.msg_iovlen = 1;
    auto got = recvmsg(fd, &message, 0);
    if (got < 0) {
      if (errno == EINTR) continue;
      error = errno;
      return Parse::failed;
    }
    if (message.msg_flags & MSG_TRUNC) {
      error = EMSGSIZE;
      return Parse::failed;
    }
    if (from.nl_pid != 0) continue;  // not from the kernel
    switch (parseMessages(std::span(buffer.data(), static_cast<std::size_t>(got)), snapshot, sequence, error)) {
      case Parse::more:
        break;
      case Parse::interrupted:
        interrupted = true;
        break;
      case Parse::done:
        return interrupted ? Parse::interrupted : Parse::done;
      case Parse::failed:
        return Parse::failed;
    }
  }
}

}  // namespace

const NetworkInterface* NetworkSnapshot::interfaceAt(int index) const {
  for (const auto& interface : interfaces) {
    if (interface.index == index) return &interface;
  }
  return nullptr;
}

bool isCellularInterface(const NetworkInterface& interface) {
  return interface.name.starts_with("ww") || interface.type == ARPHRD_RAWIP;
}

bool isUsableInterface(const NetworkInterface& interface) {
  constexpr unsigned kUpAndRunning = IFF_UP | IFF_RUNNING;
  return (interface.flags & kUpAndRunning) == kUpAndRunning && !(interface.flags & IFF_LOOPBACK) &&
         interface.type != ARPHRD_LOOPBACK;
}

ReachabilityFlags deriveFlags(const NetworkSnapshot& snapshot) {
  const DefaultRoute* best = nullptr;
  const NetworkInterface* bestInterface = nullptr;
  auto preferred = [](const DefaultRoute& a, const DefaultRoute& b) {
    if (a.metric != b.metric) return a.metric < b.metric;
    if (a.family != b.family) return a.family == AF_INET;
    return a.interfaceIndex < b.interfaceIndex;
  };
  for (const auto& route : snapshot.defaultRoutes) {
    const auto* interface = snapshot.interfaceAt(route.interfaceIndex);
    if (!interface || !isUsableInterface(*interface)) continue;
    if (!best || preferred(route, *best)) {
      best = &route;
      bestInterface = interface;
    }
  }
  if (!best) return 0;
  ReachabilityFlags flags = reachability_flag::kReachable;
  if (isCellularInterface(*bestInterface)) flags |= reachability_flag::kIsWWAN;
  return flags;
}

bool addNetlinkMessages(std::span<const std::byte> buffer, NetworkSnapshot& snapshot) {
  int error = 0;
  return parseMessages(buffer, snapshot, 0, error) != Parse::failed;
}

std::optional<NetworkSnapshot> readNetworkSnapshot() {
  Fd fd(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
  if (fd.get() < 0) return std::nullopt;
  std::uint32_t sequence = 1;
  // A dump interrupted by a change is read again; a few tries are plenty.
  for (int attempt = 0; attempt < 4; ++attempt) {
    NetworkSnapshot snapshot;
    bool interrupted = false;
    bool failed = false;
    struct Request {
      std::uint16_t type;
      unsigned char family;
      bool optional;  // IPv6 may be disabled in the kernel
    };
    for (auto request : {Request{RTM_GETLINK, AF_UNSPEC, false}, Request{RTM_GETROUTE, AF_INET, false},
                         Request{RTM_GETROUTE, AF_INET6, true}}) {
      int error = 0;
      auto result = dump(fd.get(), request.type, request.family, sequence++, snapshot, error);
      if (result == Parse::interrupted) interrupted = true;
      if (result == Parse::failed && !(request.optional && error == EAFNOSUPPORT)) {
        failed = true;
        break;
      }
    }
    if (failed) return std::nullopt;
    if (!interrupted) return snapshot;
  }
  return std::nullopt;
}

// --- NetworkChangeSocket

std::optional<NetworkChangeSocket> NetworkChangeSocket::open() {
  int netlink = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
  if (netlink < 0) return std::nullopt;
  sockaddr_nl local{};
  local.nl_family = AF_NETLINK;
  local.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
  if (bind(netlink, reinterpret_cast<sockaddr*>(&local), sizeof local) < 0) {
    ::close(netlink);
    return std::nullopt;
  }
  int event = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (event < 0) {
    ::close(netlink);
    return std::nullopt;
  }
  return NetworkChangeSocket(netlink, event);
}

NetworkChangeSocket::NetworkChangeSocket(NetworkChangeSocket&& other) noexcept
    : netlink_(std::exchange(other.netlink_, -1)), event_(std::exchange(other.event_, -1)) {}

NetworkChangeSocket& NetworkChangeSocket::operator=(NetworkChangeSocket&& other) noexcept {
  if (this != &other) {
    close();
    netlink_ = std::exchange(other.netlink_, -1);
    event_ = std::exchange(other.event_, -1);
  }
  return *this;
}

NetworkChangeSocket::~NetworkChangeSocket() { close(); }

void NetworkChangeSocket::close() {
  if (netlink_ >= 0) ::close(std::exchange(netlink_, -1));
  if (event_ >= 0) ::close(std::exchange(event_, -1));
}

void NetworkChangeSocket::wake() {
  std::uint64_t one = 1;
  [[maybe_unused]] auto written = write(event_, &one, sizeof one);
}

NetworkChangeSocket::Wait NetworkChangeSocket::waitForChange() {
  std::vector<std::byte> buffer(kReceiveBuffer);
  for (;;) {
    pollfd fds[2] = {{event_, POLLIN, 0}, {netlink_, POLLIN, 0}};
    if (poll(fds, 2, -1) < 0) {
      if (errno == EINTR) continue;
      return Wait::failed;
    }
    if (fds[0].revents) {
      std::uint64_t count = 0;
      [[maybe_unused]] auto got = read(event_, &count, sizeof count);
      return Wait::woken;
    }
    if (!fds[1].revents) continue;
    bool changed = false;
    for (;;) {  // consume everything pending; one re-read covers the lot
      auto got = recv(netlink_, buffer.data(), buffer.size(), MSG_DONTWAIT);
      if (got > 0) {
        changed = true;
        continue;
      }
      if (got == 0) break;
      if (errno == EINTR) continue;
      if (errno == ENOBUFS) {  // overrun: messages were lost
        changed = true;
        continue;
      }
      if (errno == EAGAIN || errno == EWOULDBLOCK) break;
      return Wait::failed;
    }
    if (changed) return Wait::changed;
  }
}

}  // namespace vantu::linux_platform
