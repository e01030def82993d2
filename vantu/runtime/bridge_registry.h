#pragma once
// Maps bridge names to handlers. Each registry makes one handler object per
// bridge on first use and reuses it (handlers such as the pickers keep a
// busy flag across calls).

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vantu/core/h5_base_handler.h"
#include "vantu/core/bridge_list.h"

namespace vantu {

class BridgeRegistry {
 public:
  using Factory = std::function<std::shared_ptr<H5BaseHandler>()>;

  /// Registers (or replaces) the factory for `name`.
  void add(std::string name, Factory factory);
  /// Registers `Handler` under its `kRegisteredName` when it has one (a
  /// page calls it by a name other than the one it reports to analytics),
  /// else under its `kBridgeName`.
  template <class Handler>
  void add() {
    add(std::string(registeredName<Handler>()), [] { return std::make_shared<Handler>(); });
  }
  template <class Handler>
  static constexpr std::string_view registeredName() {
    if constexpr (requires { Handler::kRegisteredName; }) {
      return Handler::kRegisteredName;
    } else {
      return Handler::kBridgeName;
    }
  }
  template <class... Handlers>
  void addAll(BridgeList<Handlers...>) {
    (add<Handlers>(), ...);
  }

  bool contains(std::string_view name) const;
  std::vector<std::string> names() const;
  /// The handler for `name`, made on first use; nullptr for an unknown name.
  std::shared_ptr<H5BaseHandler> handlerFor(std::string_view name);

  /// Runs one call. An unknown name is answered at once with the flat error
  /// {"error": 2, "message": "Unknown bridge: <name>"}.
  void dispatch(std::string_view name, H5HandlerInputParams params);

  /// Forgets the handler objects made so far (the next call makes new ones).
  void releaseHandlers();

 private:
  struct Entry {
    Factory factory;
    std::shared_ptr<H5BaseHandler> handler;
  };
  std::map<std::string, Entry, std::less<>> entries_;
};

/// Registers every bridge the library has.
void registerAllBridges(BridgeRegistry& registry);

}  // namespace vantu
