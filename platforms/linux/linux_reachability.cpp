#include "platforms/linux/linux_reachability.h"

#include <utility>

namespace vantu::linux_platform {

struct LinuxReachabilityHandle::Monitor {
  Monitor(NetworkChangeSocket socket, std::uint64_t generation, std::shared_ptr<SerialQueue> queue,
          ReachabilityFlags last)
      : socket(std::move(socket)), generation(generation), queue(std::move(queue)), last(last) {}

  NetworkChangeSocket socket;
  std::uint64_t generation;
  std::shared_ptr<SerialQueue> queue;
  ReachabilityFlags last;  // touched by the monitor thread only, once it runs
  std::thread thread;
};

LinuxReachabilityHandle::~LinuxReachabilityHandle() {
  std::lock_guard control(controlMutex_);
  stopMonitor();
}

bool LinuxReachabilityHandle::monitoring() const {
  std::lock_guard lock(stateMutex_);
  return monitor_ != nullptr;
}

std::optional<ReachabilityFlags> LinuxReachabilityHandle::doCurrentFlags() {
  auto snapshot = readNetworkSnapshot();
  if (!snapshot) return std::nullopt;
  return deriveFlags(*snapshot);
}

bool LinuxReachabilityHandle::doSetCallback(Callback callback) {
  std::lock_guard control(controlMutex_);
  {
    std::lock_guard lock(stateMutex_);
    callback_ = std::move(callback);
    ++generation_;
  }
  return restartMonitor();
}

bool LinuxReachabilityHandle::doSetDispatchQueue(std::shared_ptr<SerialQueue> queue) {
  std::lock_guard control(controlMutex_);
  {
    std::lock_guard lock(stateMutex_);
    queue_ = std::move(queue);
    ++generation_;
  }
  return restartMonitor();
}

void LinuxReachabilityHandle::stopMonitor() {
  std::unique_ptr<Monitor> monitor;
  {
    std::lock_guard lock(stateMutex_);
    monitor = std::move(monitor_);
  }
  if (!monitor) return;
  monitor->socket.wake();
  monitor->thread.join();
  // The sockets close as `monitor` goes.
}

bool LinuxReachabilityHandle::restartMonitor() {
  stopMonitor();
  std::uint64_t generation;
  std::shared_ptr<SerialQueue> queue;
  {
    std::lock_guard lock(stateMutex_);
    if (!callback_ || !queue_) return true;
    generation = generation_;
    queue = queue_;
  }
  // Subscribe before reading the starting point, so no change falls between.
  auto socket = NetworkChangeSocket::open();
  if (!socket) return false;
  auto snapshot = readNetworkSnapshot();
  if (!snapshot) return false;
  auto monitor = std::make_unique<Monitor>(std::move(*socket), generation, std::move(queue), deriveFlags(*snapshot));
  monitor->thread = std::thread(&LinuxReachabilityHandle::watch, std::ref(*monitor), weak_from_this());
  std::lock_guard lock(stateMutex_);
  monitor_ = std::move(monitor);
  return true;
}

void LinuxReachabilityHandle::watch(Monitor& monitor, std::weak_ptr<LinuxReachabilityHandle> weak) {
  while (monitor.socket.waitForChange() == NetworkChangeSocket::Wait::changed) {
    auto snapshot = readNetworkSnapshot();
    if (!snapshot) continue;  // try again at the next change
    auto flags = deriveFlags(*snapshot);
    if (flags == monitor.last) continue;
    monitor.last = flags;
    monitor.queue->async([weak, generation = monitor.generation, flags] {
      if (auto self = weak.lock()) self->deliver(generation, flags);
    });
  }
}

void LinuxReachabilityHandle::deliver(std::uint64_t generation, ReachabilityFlags flags) {
  Callback callback;
  {
    std::lock_guard lock(stateMutex_);
    if (generation != generation_ || !callback_) return;  // replaced or removed since
    callback = callback_;
  }
  callback(flags);
}

std::shared_ptr<ReachabilityHandle> LinuxReachability::doHandleForAddress(const SocketAddress& address) {
  if (!(address == SocketAddress::zeroIPv4())) return nullptr;
  return std::make_shared<LinuxReachabilityHandle>();
}

std::shared_ptr<ReachabilityHandle> LinuxReachability::doHandleForHostname(const std::string&) { return nullptr; }

}  // namespace vantu::linux_platform
