#include "vantu/platform/dispatch.h"

namespace vantu {

void DispatchGroup::enter() {
  std::lock_guard lock(mutex_);
  ++count_;
}

void DispatchGroup::leave() {
  std::unique_lock lock(mutex_);
  if (count_ > 0) --count_;
  flushIfEmpty(lock);
}

void DispatchGroup::notify(std::shared_ptr<SerialQueue> queue, Task task) {
  std::unique_lock lock(mutex_);
  waiting_.emplace_back(std::move(queue), std::move(task));
  flushIfEmpty(lock);
}

void DispatchGroup::flushIfEmpty(std::unique_lock<std::mutex>& lock) {
  if (count_ != 0 || waiting_.empty()) return;
  auto ready = std::move(waiting_);
  waiting_.clear();
  lock.unlock();
  for (auto& [queue, task] : ready) queue->async(std::move(task));
}

}  // namespace vantu
