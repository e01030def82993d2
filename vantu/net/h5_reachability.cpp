#include "vantu/net/h5_reachability.h"

#include <string>

#include "vantu/platform/platform.h"

namespace vantu {

namespace flag = reachability_flag;

std::string_view connectionDescription(Connection connection) {
  switch (connection) {
    case Connection::wifi:
      return "WiFi";
    case Connection::cellular:
      return "Cellular";
    case Connection::none:
      break;
  }
  return "No Connection";
}

ReachabilityError ReachabilityError::failedToCreateWithAddress(SocketAddress address) {
  ReachabilityError e;
  e.kind = Kind::FailedToCreateWithAddress;
  e.address = address;
  return e;
}

ReachabilityError ReachabilityError::failedToCreateWithHostname(std::string hostname) {
  ReachabilityError e;
  e.kind = Kind::FailedToCreateWithHostname;
  e.hostname = std::move(hostname);
  return e;
}

ReachabilityError ReachabilityError::of(Kind kind) {
  ReachabilityError e;
  e.kind = kind;
  return e;
}

std::string ReachabilityError::description() const {
  switch (kind) {
    case Kind::FailedToCreateWithAddress: {
      auto a = address.address;
      return "FailedToCreateWithAddress(" + std::to_string(a >> 24) + "." + std::to_string((a >> 16) & 0xff) + "." +
             std::to_string((a >> 8) & 0xff) + "." + std::to_string(a & 0xff) + ":" + std::to_string(address.port) +
             ")";
    }
    case Kind::FailedToCreateWithHostname:
      return "FailedToCreateWithHostname(" + hostname + ")";
    case Kind::UnableToSetCallback:
      return "UnableToSetCallback";
    case Kind::UnableToSetDispatchQueue:
      return "UnableToSetDispatchQueue";
    case Kind::UnableToGetInitialFlags:
      break;
  }
  return "UnableToGetInitialFlags";
}

Connection connectionForFlags(std::optional<ReachabilityFlags> flags, bool allowsCellularConnection) {
  if (!flags || !(*flags & flag::kReachable)) return Connection::none;
  if (*flags & flag::kIsWWAN) return allowsCellularConnection ? Connection::cellular : Connection::none;
  if (!(*flags & flag::kConnectionRequired)) return Connection::wifi;
  bool automatic = (*flags & (flag::kConnectionOnTraffic | flag::kConnectionOnDemand)) != 0;
  bool needsUser = (*flags & flag::kInterventionRequired) != 0;
  return automatic && !needsUser ? Connection::wifi : Connection::none;
}

std::string describeFlags(std::optional<ReachabilityFlags> flags, bool isRunningOnDevice) {
  if (!flags) return "unavailable flags";
  auto F = *flags;
  auto mark = [F](ReachabilityFlags bit, char c) { return (F & bit) ? c : '-'; };
  std::string text;
  text += isRunningOnDevice ? mark(flag::kIsWWAN, 'W') : 'X';
  text += mark(flag::kReachable, 'R');
  text += ' ';
  text += mark(flag::kConnectionRequired, 'c');
  text += mark(flag::kTransientConnection, 't');
  text += mark(flag::kInterventionRequired, 'i');
  text += mark(flag::kConnectionOnTraffic, 'C');
  text += mark(flag::kConnectionOnDemand, 'D');
  text += mark(flag::kIsLocalAddress, 'l');
  text += mark(flag::kIsDirect, 'd');
  return text;
}

// --- H5Reachability

H5Reachability::H5Reachability(std::shared_ptr<ReachabilityHandle> reachabilityRef, std::shared_ptr<SerialQueue> queue)
    : reachabilityRef_(std::move(reachabilityRef)), queue_(std::move(queue)) {
  auto& p = platform();
  if (!queue_) queue_ = p.dispatch->makeSerialQueue(std::string(kQueueLabel));
  main_ = p.dispatch->main();
  notificationCenter = p.notificationCenter;
  if (p.device) isRunningOnDevice = p.device->isRunningOnDevice();
}

H5Reachability::~H5Reachability() { clearRegistration(); }

std::shared_ptr<H5Reachability> H5Reachability::make(std::shared_ptr<ReachabilityHandle> reachabilityRef,
                                                     std::shared_ptr<SerialQueue> queue) {
  return std::shared_ptr<H5Reachability>(new H5Reachability(std::move(reachabilityRef), std::move(queue)));
}

ReachabilityResult H5Reachability::makeForInternet(std::shared_ptr<SerialQueue> queue) {
  auto address = SocketAddress::zeroIPv4();
  auto& service = platform().reachability;
  auto handle = service ? service->handleForAddress(address) : nullptr;
  if (!handle) return ReachabilityError::failedToCreateWithAddress(address);
  return make(std::move(handle), std::move(queue));
}

ReachabilityResult H5Reachability::makeForHostname(const std::string& hostname, std::shared_ptr<SerialQueue> queue) {
  auto& service = platform().reachability;
  auto handle = service ? service->handleForHostname(hostname) : nullptr;
  if (!handle) return ReachabilityError::failedToCreateWithHostname(hostname);
  return make(std::move(handle), std::move(queue));
}

std::optional<ReachabilityError> H5Reachability::startNotifier() {
  if (notifierRunning_) return std::nullopt;

  std::weak_ptr<H5Reachability> weak = weak_from_this();
  bool registered = reachabilityRef_->setCallback([weak](ReachabilityFlags flags) {
    if (auto self = weak.lock()) self->flagsChanged(flags);
  });
  if (!registered) {
    stopNotifier();
    return ReachabilityError::of(ReachabilityError::Kind::UnableToSetCallback);
  }
  if (!reachabilityRef_->setDispatchQueue(queue_)) {
    clearRegistration();
    return ReachabilityError::of(ReachabilityError::Kind::UnableToSetDispatchQueue);
  }

  std::optional<ReachabilityFlags> initial;
  queue_->sync([&] { initial = reachabilityRef_->currentFlags(); });
  if (!initial) {
    stopNotifier();
    return ReachabilityError::of(ReachabilityError::Kind::UnableToGetInitialFlags);
  }
  bool changed;
  {
    std::lock_guard lock(flagsMutex_);
    changed = flags_ != initial;
  }
  if (changed) flagsChanged(*initial);
  notifierRunning_ = true;
  return std::nullopt;
}

void H5Reachability::stopNotifier() {
  clearRegistration();
  notifierRunning_ = false;
}

void H5Reachability::clearRegistration() {
  reachabilityRef_->setCallback({});
  reachabilityRef_->setDispatchQueue(nullptr);
}

std::optional<ReachabilityFlags> H5Reachability::flags() const {
  std::lock_guard lock(flagsMutex_);
  return flags_;
}

std::optional<ReachabilityFlags> H5Reachability::readFlags() {
  if (auto stored = flags()) return stored;
  std::optional<ReachabilityFlags> fetched;
  queue_->sync([&] { fetched = reachabilityRef_->currentFlags(); });
  std::lock_guard lock(flagsMutex_);
  // A change that arrived meanwhile is newer than what was fetched.
  if (!flags_) flags_ = fetched;
  return flags_;
}

void H5Reachability::flagsChanged(ReachabilityFlags flags) {
  {
    std::lock_guard lock(flagsMutex_);
    flags_ = flags;
  }
  std::weak_ptr<H5Reachability> weak = weak_from_this();
  main_->async([weak, flags] {
    auto self = weak.lock();
    if (!self) return;
    if (connectionForFlags(flags, self->allowsCellularConnection) != Connection::none) {
      if (self->whenReachable) self->whenReachable(*self);
    } else if (self->whenUnreachable) {
      self->whenUnreachable(*self);
    }
    if (self->notificationCenter) self->notificationCenter->post(kReachabilityChangedNotification, self);
  });
}

Connection H5Reachability::connection() { return connectionForFlags(readFlags(), allowsCellularConnection); }

NetworkStatus H5Reachability::currentReachabilityStatus() {
  switch (connection()) {
    case Connection::wifi:
      return NetworkStatus::reachableViaWiFi;
    case Connection::cellular:
      return NetworkStatus::reachableViaWWAN;
    case Connection::none:
      break;
  }
  return NetworkStatus::notReachable;
}

std::string H5Reachability::currentReachabilityString() { return std::string(connectionDescription(connection())); }

bool H5Reachability::isReachable() { return connection() != Connection::none; }
bool H5Reachability::isReachableViaWWAN() { return connection() == Connection::cellular; }
bool H5Reachability::isReachableViaWiFi() { return connection() == Connection::wifi; }

std::string H5Reachability::description() { return describeFlags(readFlags(), isRunningOnDevice); }

}  // namespace vantu
