#include "vantu/runtime/bridge_registry.h"

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_op_error.h"

namespace vantu {

void BridgeRegistry::add(std::string name, Factory factory) {
  entries_[std::move(name)] = Entry{std::move(factory), nullptr};
}

bool BridgeRegistry::contains(std::string_view name) const { return entries_.find(name) != entries_.end(); }

std::vector<std::string> BridgeRegistry::names() const {
  std::vector<std::string> result;
  result.reserve(entries_.size());
  for (const auto& [name, entry] : entries_) result.push_back(name);
  return result;
}

std::shared_ptr<H5BaseHandler> BridgeRegistry::handlerFor(std::string_view name) {
  auto it = entries_.find(name);
  if (it == entries_.end()) return nullptr;
  if (!it->second.handler) it->second.handler = it->second.factory();
  return it->second.handler;
}

void BridgeRegistry::dispatch(std::string_view name, H5HandlerInputParams params) {
  auto handler = handlerFor(name);
  if (!handler) {
    answerFailure(params.callback, "Unknown bridge: " + std::string(name));
    return;
  }
  handler->handleWith(std::move(params));
}

void BridgeRegistry::releaseHandlers() {
  for (auto& [name, entry] : entries_) entry.handler.reset();
}

}  // namespace vantu
