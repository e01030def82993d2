#include "vantu/platform/notification_center.h"

#include <utility>

namespace vantu {

ObserverToken::ObserverToken(ObserverToken&& other) noexcept
    : center_(std::move(other.center_)), id_(std::exchange(other.id_, 0)) {}

ObserverToken& ObserverToken::operator=(ObserverToken&& other) noexcept {
  if (this != &other) {
    reset();
    center_ = std::move(other.center_);
    id_ = std::exchange(other.id_, 0);
  }
  return *this;
}

void ObserverToken::reset() {
  auto id = std::exchange(id_, 0);
  if (id == 0) return;
  if (auto center = center_.lock()) center->doRemoveObserver(id);
  center_.reset();
}

ObserverToken NotificationCenter::addObserver(std::string name, Observer observer) {
  auto id = nextId_++;
  doAddObserver(id, std::move(name), std::move(observer));
  return ObserverToken(weak_from_this(), id);
}

}  // namespace vantu
