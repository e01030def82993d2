#pragma once
// Storage tests run on the simulated device (virtual dispatch) with the
// real SQLite preferences store in a fresh temporary directory.

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/core/view_controller_context.h"
#include "vantu/storage/user_defaults_data_store_impl.h"

namespace vantu {

// Readable failure messages for values.
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
  std::shared_ptr<UserDefaultsDataStoreImpl> store() { return UserDefaultsDataStoreImpl::shared(); }

  Outcome get(const std::string& domain, std::vector<std::string> keys) {
    Outcome o;
    store()->getData(domain, std::move(keys), o.done());
    return settle(), o;
  }
  Outcome save(const std::string& domain, Dict data) {
    Outcome o;
    store()->saveData(domain, std::move(data), o.done());
    return settle(), o;
  }
  Outcome remove(const std::string& domain, std::vector<std::string> keys) {
    Outcome o;
    store()->removeData(domain, std::move(keys), o.done());
    return settle(), o;
  }

  /// Every key of a suite (empty when it cannot be opened).
  std::vector<std::string> keysOf(const std::string& name) {
    auto s = suite(name);
    if (!s) return {};
    auto keys = s->keys();
    return keys.ok() ? keys.value() : std::vector<std::string>{};
  }

  /// A screen carrying `appId` (none when nullopt).
  static std::shared_ptr<ViewController> screenOf(std::optional<std::string> appId) {
    auto vc = std::make_shared<ViewController>();
    if (appId) setUniqueAppIdentifier(*vc, std::move(appId));
    return vc;
  }

  /// Calls a bridge from `vc` and settles; every answer in order.
  std::vector<Value> call(std::string_view bridge, Dict data, std::shared_ptr<ViewController> vc) {
    std::vector<Value> answers;
    {
      BridgeRegistry registry;
      registerAllBridges(registry);
      registry.dispatch(bridge, H5HandlerInputParams(std::move(vc), std::move(data),
                                                     [&](const Value& answer) { answers.push_back(answer); }));
      registry_.push_back(std::move(registry));  // keeps the handlers alive until the test ends
    }
    settle();
    return answers;
  }

  std::vector<BridgeRegistry> registry_;
};

}  // namespace vantu::testing_support
