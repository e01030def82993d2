#pragma once
// Storage tests: the simulated device with the real SQLite preferences store in a fresh temporary directory.

#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/core/view_controller_context.h"
#include "vantu/storage/user_defaults_data_store_impl.h"

namespace vantu {
inline void PrintTo(const Value& value, std::ostream* os) { *os << json::write(value); }
inline void PrintTo(const Dict& dict, std::ostream* os) { *os << json::write(dict); }
}  // namespace vantu

namespace vantu::testing_support {

// What a store operation's completion was given (result only for reads).
struct Outcome {
  int calls = 0;
  bool success = false;
  std::optional<PlatformError> error;
  Dict result;
  auto done() {
    return [this](bool ok, std::optional<PlatformError> e, Dict r = {}) {
      ++calls, success = ok, error = std::move(e), result = std::move(r);
    };
  }
};

class StorageFixture : public BridgeTestFixture {
 protected:
  Preferences& preferences() { return *platform().preferences; }
  std::shared_ptr<PreferenceSuite> suite(const std::string& name) { return preferences().suite(name); }
  static std::shared_ptr<UserDefaultsDataStoreImpl> store() { return UserDefaultsDataStoreImpl::shared(); }

  // One store operation, settled.
  Outcome get(const std::string& d, Strings k) { return run([&](auto done) { store()->getData(d, k, done); }); }
  Outcome save(const std::string& d, Dict v) { return run([&](auto done) { store()->saveData(d, v, done); }); }
  Outcome remove(const std::string& d, Strings k) { return run([&](auto done) { store()->removeData(d, k, done); }); }
  template <class Op>
  Outcome run(Op op) {
    Outcome o;
    op(o.done());
    return settle(), o;
  }

  /// Every key of a suite (empty when it cannot be read).
  Strings keysOf(const std::string& name) {
    auto keys = suite(name)->keys();
    return keys.ok() ? keys.value() : Strings{};
  }

  /// A screen carrying `appId` (none when nullopt).
  static std::shared_ptr<ViewController> screenOf(std::optional<std::string> appId) {
    auto vc = std::make_shared<ViewController>();
    if (appId) setUniqueAppIdentifier(*vc, std::move(appId));
    return vc;
  }

  /// Dispatches `bridge` from `vc` through a fresh registry, without settling; the answers land in the
  /// returned list. The registry's handlers live until the test ends unless `keepHandlers` is false.
  std::shared_ptr<std::vector<Value>> dispatch(std::string_view bridge, Dict data, std::shared_ptr<ViewController> vc,
                                               bool keepHandlers = true) {
    auto answers = std::make_shared<std::vector<Value>>();
    BridgeRegistry registry;
    registerAllBridges(registry);
    registry.dispatch(bridge, H5HandlerInputParams(std::move(vc), std::move(data),
                                                   [answers](const Value& answer) { answers->push_back(answer); }));
    if (keepHandlers) registries_.push_back(std::move(registry));
    return answers;
  }
  /// Dispatches and settles; every answer in order.
  std::vector<Value> call(std::string_view bridge, Dict data, std::shared_ptr<ViewController> vc) {
    auto answers = dispatch(bridge, std::move(data), std::move(vc));
    return settle(), *answers;
  }

  std::vector<BridgeRegistry> registries_;
};

}  // namespace vantu::testing_support
