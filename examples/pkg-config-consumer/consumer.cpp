// The smallest consumer: the platform-free library through pkg-config only.
// Registers a bridge of its own next to the built-in ones and calls it.

#include <cstdio>
#include <memory>
#include <string>

#include "vantu/core/h5_base_handler.h"
#include "vantu/runtime/bridge_registry.h"
#include "vantu/value/json.h"

namespace {

class HelloBridge : public vantu::H5BaseHandler {
 public:
  void handleWith(vantu::H5HandlerInputParams params) override {
    params.callback(vantu::Dict{{"hello", params.data.getString("name").value_or("world")}});
  }
};

}  // namespace

int main() {
  vantu::BridgeRegistry registry;
  vantu::registerAllBridges(registry);
  const auto builtIn = registry.names().size();
  registry.add("hello", [] { return std::make_shared<HelloBridge>(); });
  std::string answer;
  registry.dispatch("hello", vantu::H5HandlerInputParams(nullptr, vantu::Dict{{"name", "pkg-config"}},
                                                         [&](const vantu::Value& v) { answer = vantu::json::write(v); }));
  std::printf("%zu built-in bridges; hello answered %s\n", builtIn, answer.c_str());
  return answer == R"({"hello":"pkg-config"})" && builtIn > 0 ? 0 : 1;
}
