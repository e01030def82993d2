// Reachability on Linux: the flag rules over made-up snapshots, the rtnetlink
// parser over hand-built messages, the service and its monitor on this host
// (no descriptor or thread left behind), and a real kernel in a network
// namespace of its own.

#include <netinet/in.h>
#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "platforms/linux/linux_dispatch.h"
#include "platforms/linux/linux_platform.h"
#include "platforms/linux/linux_reachability.h"
#include "platforms/linux/network_snapshot.h"
#include "tests/platforms/linux/proc_counts.h"
#include "vantu/net/h5_reachability.h"

namespace vantu::linux_platform {
namespace {

namespace flag = reachability_flag;
using namespace std::chrono_literals;
constexpr unsigned kUp = IFF_UP | IFF_RUNNING;
constexpr unsigned short kRawIp = 519;

NetworkInterface iface(int index, std::string name, unsigned flags = kUp, unsigned short type = ARPHRD_ETHER) {
  return NetworkInterface{index, std::move(name), flags, type};
}
DefaultRoute v4(int index, std::uint32_t metric = 0) { return DefaultRoute{AF_INET, index, metric}; }
DefaultRoute v6(int index, std::uint32_t metric = 0) { return DefaultRoute{AF_INET6, index, metric}; }

TEST(DerivedFlags, FollowTheDefaultRoute) {
  const auto lo = iface(1, "lo", kUp | IFF_LOOPBACK, ARPHRD_LOOPBACK);
  const ReachabilityFlags R = flag::kReachable, W = flag::kReachable | flag::kIsWWAN;
  const struct { const char* name; NetworkSnapshot snapshot; ReachabilityFlags flags; } cases[] = {
      {"interface up, no default route", {{lo, iface(2, "eth0")}, {}}, 0},
      {"default route over ethernet", {{lo, iface(2, "eth0")}, {v4(2, 100)}}, R},
      {"running but administratively down", {{iface(2, "eth0", IFF_RUNNING)}, {v4(2)}}, 0},
      {"route over an unknown interface", {{iface(2, "eth0")}, {v4(7)}}, 0},
      {"route over loopback", {{lo}, {v4(1)}}, 0},
      {"wwan by name", {{iface(3, "wwan0")}, {v4(3)}}, W},
      {"wwan by raw-ip link type", {{iface(3, "rmnet_data0", kUp, kRawIp)}, {v6(3)}}, W},
      {"ppp is not cellular", {{iface(4, "ppp0", kUp | IFF_POINTOPOINT, ARPHRD_PPP)}, {v4(4)}}, R},
      {"lower metric wins: modem", {{iface(2, "eth0"), iface(3, "wwan0")}, {v4(2, 600), v4(3, 100)}}, W},
      {"unusable better route skipped", {{iface(2, "eth0", IFF_UP), iface(3, "wwan0")}, {v4(2, 100), v4(3, 700)}}, W},
      {"equal metric prefers IPv4", {{iface(5, "eth0"), iface(3, "wwan0")}, {v6(3, 50), v4(5, 50)}}, R},
      {"equal metric and family: lower index", {{iface(5, "eth0"), iface(3, "wwan0")}, {v4(5, 50), v4(3, 50)}}, W},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(deriveFlags(c.snapshot), c.flags) << describeFlags(deriveFlags(c.snapshot), true);
  }
}

// --- hand-built rtnetlink messages

using Bytes = std::vector<std::byte>;

template <typename T>
Bytes bytesOf(const T& value) {
  auto* p = reinterpret_cast<const std::byte*>(&value);
  return Bytes(p, p + sizeof(T));
}
Bytes u32(std::uint32_t v) { return bytesOf(v); }
Bytes& operator+=(Bytes& out, const Bytes& more) { return out.insert(out.end(), more.begin(), more.end()), out; }
Bytes padded(Bytes b) { return b.resize((b.size() + 3) / 4 * 4), b; }

Bytes attribute(unsigned short type, const Bytes& payload) {
  Bytes out = bytesOf(rtattr{static_cast<unsigned short>(RTA_LENGTH(payload.size())), type});
  return padded(out += payload);
}

template <typename Body>
void appendMessage(Bytes& buffer, std::uint16_t type, const Body& body, const std::vector<Bytes>& attrs = {}) {
  Bytes payload = padded(bytesOf(body));
  for (const auto& a : attrs) payload += a;
  Bytes message = bytesOf(nlmsghdr{.nlmsg_len = std::uint32_t(NLMSG_HDRLEN + payload.size()), .nlmsg_type = type});
  message.resize(NLMSG_HDRLEN);
  buffer += message += payload;
}

void appendLink(Bytes& buffer, int index, const char* name, unsigned flags, unsigned short type) {
  auto* text = reinterpret_cast<const std::byte*>(name);
  ifinfomsg info{.ifi_family = AF_UNSPEC, .ifi_type = type, .ifi_index = index, .ifi_flags = flags};
  appendMessage(buffer, RTM_NEWLINK, info,
                {attribute(IFLA_MTU, u32(1500)), attribute(IFLA_IFNAME, Bytes(text, text + std::strlen(name) + 1))});
}

rtmsg routeHeader(unsigned char family, unsigned char table = RT_TABLE_MAIN, unsigned char type = RTN_UNICAST) {
  return rtmsg{.rtm_family = family, .rtm_table = table, .rtm_protocol = RTPROT_BOOT, .rtm_type = type};
}

Bytes nextHop(int index, unsigned char flags = 0) {
  in6_addr gateway{};
  gateway.s6_addr[0] = 0xfe, gateway.s6_addr[1] = 0x80;
  Bytes gw = attribute(RTA_GATEWAY, bytesOf(gateway));
  Bytes out = bytesOf(rtnexthop{.rtnh_len = static_cast<unsigned short>(sizeof(rtnexthop) + gw.size()),
                                .rtnh_flags = flags, .rtnh_ifindex = index});
  return out += gw;
}

TEST(NetlinkMessages, LinksAndUnicastDefaultRoutesOfTheMainTableAreTaken) {
  Bytes buffer;
  appendLink(buffer, 2, "eth0", kUp, ARPHRD_ETHER);
  appendLink(buffer, 2, "eth0", IFF_UP | IFF_BROADCAST, ARPHRD_ETHER);  // replaces the one before
  appendLink(buffer, 3, "wwan0", IFF_UP | IFF_RUNNING, kRawIp);
  appendMessage(buffer, RTM_NEWROUTE, routeHeader(AF_INET),
                {attribute(RTA_TABLE, u32(RT_TABLE_MAIN)), attribute(RTA_PRIORITY, u32(100)), attribute(RTA_OIF, u32(2))});
  // Not unicast, not the main table (RTA_TABLE overrides the header); the namespace test below sees the kernel's
  // own subnet and local-table routes left out.
  appendMessage(buffer, RTM_NEWROUTE, routeHeader(AF_INET, RT_TABLE_MAIN, RTN_UNREACHABLE),
                {attribute(RTA_OIF, u32(2))});
  appendMessage(buffer, RTM_NEWROUTE, routeHeader(AF_INET, RT_TABLE_COMPAT),
                {attribute(RTA_TABLE, u32(1000)), attribute(RTA_OIF, u32(2))});
  // Multipath IPv6 default: one live hop, one dead.
  Bytes hops = nextHop(3);
  hops += nextHop(2, RTNH_F_DEAD);
  appendMessage(buffer, RTM_NEWROUTE, routeHeader(AF_INET6),
                {attribute(RTA_PRIORITY, u32(1024)), attribute(RTA_MULTIPATH, hops)});
  appendMessage(buffer, NLMSG_DONE, std::uint32_t{0});

  NetworkSnapshot snapshot;
  ASSERT_TRUE(addNetlinkMessages(buffer, snapshot));
  EXPECT_EQ(snapshot.interfaces,
            (std::vector<NetworkInterface>{iface(2, "eth0", IFF_UP | IFF_BROADCAST), iface(3, "wwan0", kUp, kRawIp)}));
  EXPECT_EQ(snapshot.defaultRoutes, (std::vector<DefaultRoute>{v4(2, 100), v6(3, 1024)}));
}

TEST(NetlinkMessages, ErrorsAndMalformedLengthsFailWhileAcksAndTruncatedTailsDoNot) {
  NetworkSnapshot snapshot;
  auto parse = [&](const Bytes& b) { return snapshot = {}, addNetlinkMessages(b, snapshot); };
  Bytes error, ack, malformed, truncated, badAttribute;
  appendMessage(error, NLMSG_ERROR, nlmsgerr{.error = -EPERM});
  EXPECT_FALSE(parse(error));
  appendMessage(ack, NLMSG_ERROR, nlmsgerr{.error = 0});
  appendLink(ack, 4, "eth1", kUp, ARPHRD_ETHER);
  EXPECT_TRUE(parse(ack));
  EXPECT_EQ(snapshot.interfaces.size(), 1u);

  appendLink(malformed, 5, "eth2", kUp, ARPHRD_ETHER);
  malformed += bytesOf(nlmsghdr{.nlmsg_len = 4});  // shorter than a header
  EXPECT_FALSE(parse(malformed));

  appendLink(truncated, 6, "eth3", kUp, ARPHRD_ETHER);
  truncated.resize(truncated.size() - 3);  // the message claims more than there is
  EXPECT_TRUE(parse(truncated));
  EXPECT_TRUE(snapshot.interfaces.empty());

  // An attribute whose length runs past its message ends the attribute walk.
  appendMessage(badAttribute, RTM_NEWLINK, ifinfomsg{.ifi_index = 7}, {bytesOf(rtattr{200, IFLA_IFNAME})});
  EXPECT_TRUE(parse(badAttribute));
  ASSERT_EQ(snapshot.interfaces.size(), 1u);
  EXPECT_EQ(snapshot.interfaces[0].name, "");
}

TEST(LinuxReachabilityService, WatchesTheZeroAddressOnlyAndLeavesNothingBehind) {
  LinuxReachability service;
  SocketAddress other;
  other.address = 0x7f000001;
  EXPECT_EQ(service.handleForAddress(other), nullptr);
  EXPECT_EQ(service.handleForHostname("example.com"), nullptr);
  auto handle = std::dynamic_pointer_cast<LinuxReachabilityHandle>(service.handleForAddress(SocketAddress::zeroIPv4()));
  ASSERT_NE(handle, nullptr);

  // Attaching and detaching the monitor, many times, leaks no descriptor or thread.
  LinuxDispatch dispatch;
  auto queue = dispatch.makeSerialQueue("com.vantu.test.reachability");
  queue->sync([] {});  // its worker thread exists before counting
  auto files = countOpenFiles();
  auto threads = countThreads();
  for (int i = 0; i < 200; ++i) {
    ASSERT_TRUE(handle->setCallback([](ReachabilityFlags) {}));
    ASSERT_FALSE(handle->monitoring());  // no queue yet
    ASSERT_TRUE(handle->setDispatchQueue(queue));
    ASSERT_TRUE(handle->monitoring());
    if (i % 50 == 0) {
      EXPECT_EQ(countOpenFiles(), files + 2);  // the change socket and its wake-up descriptor
      EXPECT_LE(threadsSettledAtMost(threads + 1), threads + 1);
    }
    // Alternate which detach stops the monitor.
    ASSERT_TRUE(i % 2 ? handle->setCallback({}) : handle->setDispatchQueue(nullptr));
    ASSERT_FALSE(handle->monitoring());
    ASSERT_TRUE(i % 2 ? handle->setDispatchQueue(nullptr) : handle->setCallback({}));
  }
  EXPECT_EQ(countOpenFiles(), files);
  EXPECT_LE(threadsSettledAtMost(threads), threads);

  // Dropping a handle that is still monitoring stops it too.
  ASSERT_TRUE(handle->setCallback([](ReachabilityFlags) {}));
  ASSERT_TRUE(handle->setDispatchQueue(queue));
  handle.reset();
  EXPECT_EQ(countOpenFiles(), files);
  EXPECT_LE(threadsSettledAtMost(threads), threads);
}

// --- a real kernel: a thread of this test moves into a network namespace of its own (only a loopback interface,
// down) and changes links and routes with iproute2. Needs root and unshare(CLONE_NEWNET); skipped otherwise.

/// Runs `ip ARGS` (output discarded); true when it succeeded.
bool ip(const std::string& args) {
  int status = std::system(("ip " + args + " >/dev/null 2>&1").c_str());
  return status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// The namespace's thread; sets `skipped` when it cannot run.
void exercise(std::string& skipped) {
  if (geteuid() != 0 || unshare(CLONE_NEWNET) != 0 || !ip("link show lo")) {
    skipped = "needs root, unshare(CLONE_NEWNET) and iproute2 (" + std::string(std::strerror(errno)) + ")";
    return;
  }
  auto bundle = makeLinuxPlatform();
  installPlatform(bundle.platform);
  auto handle = bundle.platform->reachability->handleForAddress(SocketAddress::zeroIPv4());
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(handle->currentFlags(), ReachabilityFlags{0});  // a fresh namespace is not reachable

  auto made = H5Reachability::makeForInternet();
  ASSERT_TRUE(made.ok());
  auto monitor = made.value();
  std::vector<std::string> events;  // main queue only
  monitor->whenReachable = [&](H5Reachability& r) {
    events.push_back("reachable " + r.currentReachabilityString() + " " + r.description());
  };
  monitor->whenUnreachable = [&](H5Reachability& r) { events.push_back("unreachable " + r.description()); };
  std::size_t posted = 0;
  auto token = bundle.platform->notificationCenter->addObserver(std::string(kReachabilityChangedNotification),
                                                                [&](const Notification&) { ++posted; });
  EXPECT_EQ(monitor->startNotifier(), std::nullopt);
  auto waitForEvents = [&](std::size_t count) {
    return bundle.loop->runUntil([&] { return events.size() >= count && posted >= count; }, 15s);
  };
  EXPECT_TRUE(waitForEvents(1));

  // Each step: the ip commands, the flags after them, and whether a
  // notification follows. Changes that leave the flags as they were
  // (loopback up, addresses, the peer interfaces) must not be reported.
  const ReachabilityFlags R = flag::kReachable, W = flag::kReachable | flag::kIsWWAN;
  const struct { std::vector<std::string> commands; ReachabilityFlags flags; bool notifies; } steps[] = {
      {{"link set lo up", "link add v0 type veth peer name v1", "addr add 10.99.0.2/24 dev v0", "link set v1 up",
        "link set v0 up"},
       0, false},
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
    SCOPED_TRACE("ip " + step.commands.back());
    for (const auto& args : step.commands) EXPECT_TRUE(ip(args)) << "ip " << args;
    EXPECT_EQ(handle->currentFlags(), step.flags);
    if (step.notifies) {
      EXPECT_TRUE(waitForEvents(++expectedCount));
    }
  }
  EXPECT_EQ(events, (std::vector<std::string>{"unreachable -- -------", "reachable WiFi -R -------",
                                              "unreachable -- -------", "reachable WiFi -R -------",
                                              "unreachable -- -------", "reachable Cellular WR -------",
                                              "unreachable -- -------"}));
  monitor->stopNotifier();
  monitor.reset();
  made = ReachabilityResult(ReachabilityError{});
  bundle.loop->runUntilIdle();
  installPlatform(nullptr);
}

TEST(ReachabilityInNetworkNamespace, FlagsAndNotificationsFollowTheDefaultRoute) {
  std::string skipped;
  std::thread(exercise, std::ref(skipped)).join();  // the namespace ends with the thread
  if (!skipped.empty()) GTEST_SKIP() << skipped;
}

}  // namespace
}  // namespace vantu::linux_platform
