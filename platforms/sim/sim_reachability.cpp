#include "platforms/sim/sim_reachability.h"

#include <algorithm>
#include <string>

namespace vantu::sim {

class SimReachabilityHandle : public ReachabilityHandle, public std::enable_shared_from_this<SimReachabilityHandle> {
 public:
  explicit SimReachabilityHandle(std::weak_ptr<SimReachability> service) : service_(std::move(service)) {}

  bool hasCallback() const { return static_cast<bool>(callback_); }
  bool watching() const { return callback_ && queue_; }

  /// Posts the callback with `flags` to the queue. A task still queued when
  /// the callback is replaced or removed does nothing.
  void changed(ReachabilityFlags flags) {
    if (!watching()) return;
    std::weak_ptr<SimReachabilityHandle> weak = weak_from_this();
    queue_->async([weak, registration = registration_, flags] {
      auto self = weak.lock();
      if (!self || self->registration_ != registration || !self->callback_) return;
      auto callback = self->callback_;
      callback(flags);
    });
  }

 protected:
  std::optional<ReachabilityFlags> doCurrentFlags() override {
    auto service = service_.lock();
    if (!service || service->flagsUnknown) return std::nullopt;
    return service->flags();
  }

  bool doSetCallback(Callback callback) override {
    auto service = service_.lock();
    ++registration_;
    if (!callback) {
      callback_ = nullptr;
      return true;
    }
    if (!service || service->refuseCallback) return false;
    ++service->callbackRegistrations_;
    callback_ = std::move(callback);
    return true;
  }

  bool doSetDispatchQueue(std::shared_ptr<SerialQueue> queue) override {
    if (!queue) {
      queue_ = nullptr;
      return true;
    }
    auto service = service_.lock();
    if (!service || service->refuseQueue) return false;
    queue_ = std::move(queue);
    return true;
  }

 private:
  std::weak_ptr<SimReachability> service_;
  Callback callback_;
  std::shared_ptr<SerialQueue> queue_;
  std::uint64_t registration_ = 0;
};

void SimReachability::setFlags(ReachabilityFlags flags) {
  if (flags == flags_) return;
  flags_ = flags;
  std::erase_if(handles_, [](const auto& weak) { return weak.expired(); });
  auto handles = handles_;
  for (const auto& weak : handles) {
    if (auto handle = weak.lock()) handle->changed(flags);
  }
}

std::size_t SimReachability::attachedCallbacks() const {
  return static_cast<std::size_t>(std::count_if(handles_.begin(), handles_.end(), [](const auto& weak) {
    auto handle = weak.lock();
    return handle && handle->hasCallback();
  }));
}

std::size_t SimReachability::watchingHandles() const {
  return static_cast<std::size_t>(std::count_if(handles_.begin(), handles_.end(), [](const auto& weak) {
    auto handle = weak.lock();
    return handle && handle->watching();
  }));
}

std::shared_ptr<ReachabilityHandle> SimReachability::makeHandle(std::string target) {
  if (unavailable) return nullptr;
  targets_.push_back(std::move(target));
  auto handle = std::make_shared<SimReachabilityHandle>(weak_from_this());
  std::erase_if(handles_, [](const auto& weak) { return weak.expired(); });
  handles_.push_back(handle);
  return handle;
}

std::shared_ptr<ReachabilityHandle> SimReachability::doHandleForAddress(const SocketAddress& address) {
  auto a = address.address;
  return makeHandle(std::to_string(a >> 24) + "." + std::to_string((a >> 16) & 0xff) + "." +
                    std::to_string((a >> 8) & 0xff) + "." + std::to_string(a & 0xff));
}

std::shared_ptr<ReachabilityHandle> SimReachability::doHandleForHostname(const std::string& hostname) {
  return makeHandle(hostname);
}

}  // namespace vantu::sim
