#include "vantu/core/progress_throttle.h"

namespace vantu {

std::shared_ptr<ProgressThrottle> ProgressThrottle::make(Send send, std::shared_ptr<Dispatch> dispatch) {
  return std::shared_ptr<ProgressThrottle>(new ProgressThrottle(std::move(send), std::move(dispatch)));
}

void ProgressThrottle::report(const TransferProgress& progress) {
  std::lock_guard lock(mutex_);
  if (progress == lastSent_ && !held_) return;
  const Duration now = dispatch_->now();
  if (!lastSentAt_ || now - *lastSentAt_ >= kInterval) {
    held_.reset();
    sendLocked(progress);
    return;
  }
  held_ = progress;
  if (timerSet_) return;
  timerSet_ = true;
  dispatch_->main()->asyncAfter(kInterval - (now - *lastSentAt_), [weak = weak_from_this()] {
    auto self = weak.lock();
    if (!self) return;
    std::lock_guard lock(self->mutex_);
    self->timerSet_ = false;
    if (!self->held_) return;
    auto held = *self->held_;
    self->held_.reset();
    self->sendLocked(held);
  });
}

void ProgressThrottle::flush() {
  std::lock_guard lock(mutex_);
  if (!held_) return;
  auto held = *held_;
  held_.reset();
  sendLocked(held);
}

void ProgressThrottle::sendLocked(const TransferProgress& progress) {
  if (progress == lastSent_) return;
  lastSent_ = progress;
  lastSentAt_ = dispatch_->now();
  send_(progress);
}

ThrottledCall throttledCall(std::function<void(const Value&)> answer, ProgressThrottle::Send progress,
                            std::shared_ptr<Dispatch> dispatch) {
  auto throttle = ProgressThrottle::make(std::move(progress), std::move(dispatch));
  return ThrottledCall{
      [throttle, answer = std::move(answer)](const Value& value) {
        throttle->flush();
        answer(value);
      },
      [throttle](const TransferProgress& report) { throttle->report(report); }};
}

}  // namespace vantu
