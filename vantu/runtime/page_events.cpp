#include "vantu/runtime/page_events.h"

#include <algorithm>

#include "vantu/runtime/network_events.h"

namespace vantu::page {

PageEvents& PageEvents::shared() {
  static PageEvents* events = new PageEvents();  // never destroyed: subscriptions may outlive main
  return *events;
}

PageEvents::PageEvents() = default;
PageEvents::~PageEvents() = default;

std::shared_ptr<void> PageEvents::listen(Listener listener) {
  const std::uint64_t id = nextId_++;
  listeners_.push_back({id, std::move(listener)});
  if (!network_) {
    network_ = std::make_unique<NetworkEvents>([this](const Value& detail) { post(kNetworkChangedEvent, detail); });
  }
  return std::shared_ptr<void>(nullptr, [this, id](void*) { stopListening(id); });
}

void PageEvents::stopListening(std::uint64_t id) {
  std::erase_if(listeners_, [id](const Entry& entry) { return entry.id == id; });
  if (listeners_.empty()) network_.reset();
}

void PageEvents::post(std::string_view name, const Value& detail) {
  // A listener may stop listening (or start another) while it hears one.
  std::vector<std::uint64_t> ids;
  ids.reserve(listeners_.size());
  for (const auto& entry : listeners_) ids.push_back(entry.id);
  for (auto id : ids) {
    auto found = std::find_if(listeners_.begin(), listeners_.end(), [id](const Entry& e) { return e.id == id; });
    if (found == listeners_.end()) continue;
    auto listener = found->listener;
    listener(name, detail);
  }
}

void PageEvents::resetForTesting() {
  listeners_.clear();
  network_.reset();
}

}  // namespace vantu::page
