// Adds a bridge of its own to a registry next to the library's bridges,
// calls both kinds by name and prints what the page would get back.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <vantu/core/h5_base_handler.h>
#include <vantu/core/h5_handler_input_params.h>
#include <vantu/runtime/bridge_registry.h>
#include <vantu/value/json.h>
#include <vantu/version.h>

namespace {

// Answers {"echo": <text>, "length": <characters>}, or a flat error when
// "text" is missing.
class EchoHandler : public vantu::H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "consumerEcho";

  void handleWith(vantu::H5HandlerInputParams params) override {
    trackData(kBridgeName, params);
    auto text = params.data.getString("text");
    if (!text) {
      params.callback(vantu::Dict{{"error", 2}, {"message", "text missing"}});
      return;
    }
    params.callback(vantu::Dict{{"echo", *text}, {"length", static_cast<std::int64_t>(text->size())}});
  }
};

std::string call(vantu::BridgeRegistry& registry, std::string_view bridge, std::string_view dataJson) {
  auto data = vantu::json::parse(dataJson);
  if (!data.ok() || !data.value().isDict()) return "unparsable data";
  std::vector<std::string> answers;
  registry.dispatch(bridge, vantu::H5HandlerInputParams(nullptr, *data.value().asDict(),
                                                        [&](const vantu::Value& answer) {
                                                          answers.push_back(vantu::json::write(answer));
                                                        }));
  std::string joined;
  for (const auto& answer : answers) joined += answer + "\n";
  return joined;
}

}  // namespace

int main() {
  if (vantu::libraryVersion() != VANTU_VERSION_STRING) {
    std::cerr << "headers " << VANTU_VERSION_STRING << " but library " << vantu::libraryVersion() << "\n";
    return 1;
  }
  vantu::BridgeRegistry registry;
  vantu::registerAllBridges(registry);
  const auto builtIn = registry.names().size();
  registry.add<EchoHandler>();
  std::cout << "version " << vantu::libraryVersion() << " bridge SDK " << VANTU_BRIDGE_SDK_VERSION << "\n";
  std::cout << "bridges " << (builtIn > 0 ? "built-in+" : "none+") << (registry.names().size() - builtIn) << "\n";
  std::cout << call(registry, "consumerEcho", R"({"text": "héllo"})");
  std::cout << call(registry, "consumerEcho", R"({})");
  std::cout << call(registry, "noSuchBridge", R"({})");
  return 0;
}
