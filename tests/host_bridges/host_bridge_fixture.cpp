#include "tests/host_bridges/host_bridge_fixture.h"

#include "vantu/core/h5_op_error.h"
#include "vantu/platform/dispatch.h"

namespace vantu::testing_support {

std::string flatError(std::string_view message) { return json::write(payload::flatError(2, message)); }

void HostBridgeFixture::SetUp() {
  SimFixture::SetUp();
  registerAllBridges(registry);
  useHost("{}");
}

void HostBridgeFixture::useHost(std::string_view hostEntry, std::string_view lightEntry, std::string_view environment) {
  std::string scenario = R"({"delegates": {"host": )" + std::string(hostEntry) + R"(, "light": )" +
                         std::string(lightEntry) + R"(, "envHost": {}, "plain": {"kind": "object"}},
    "environment": )" + std::string(environment) + R"(,
    "screens": [
      {"name": "shell", "delegate": "host", "uniqueAppIdentifier": "mini.shop",
       "children": [{"name": "page", "children": [{"name": "frame"}]}]},
      {"name": "bare"},
      {"name": "plainHolder", "delegate": "plain", "uniqueAppIdentifier": "mini.plain"},
      {"name": "anon", "delegate": "host"},
      {"name": "top", "uniqueAppIdentifier": "mini.top",
       "children": [{"name": "l1", "children": [{"name": "l2", "children": [{"name": "l3", "delegate": "host"}]}]}]},
      {"name": "far", "delegate": "host",
       "children": [{"name": "far1", "children": [{"name": "far2", "children": [{"name": "far3"}]}]}]},
      {"name": "light", "delegate": "light", "uniqueAppIdentifier": "mini.light"}
    ]})";
  apply(scenario);
  device.takeDelegateCalls();
}

Outcome HostBridgeFixture::call(std::string_view bridge, std::string_view dataJson, std::string_view screen) {
  auto parsed = json::parse(dataJson);
  EXPECT_TRUE(parsed.ok() && parsed.value().isDict()) << dataJson;
  const Dict* data = parsed.ok() ? parsed.value().asDict() : nullptr;
  return call(bridge, data ? *data : Dict{}, screen);
}

Outcome HostBridgeFixture::call(std::string_view bridge, Dict data, std::string_view screen) {
  std::shared_ptr<ViewController> from;
  if (!screen.empty()) {
    from = device.screen(screen);
    EXPECT_NE(from, nullptr) << "no screen " << screen;
  }
  registry.dispatch(bridge, H5HandlerInputParams(std::move(from), std::move(data), [this](const Value& answer) {
                      answers_.push_back(json::write(answer));
                    }));
  device.dispatch().runReady();
  return collect();
}

Outcome HostBridgeFixture::advance(double seconds) {
  device.dispatch().advance(secondsToDuration(seconds));
  device.dispatch().runReady();
  return collect();
}

Outcome HostBridgeFixture::collect() {
  Outcome outcome;
  outcome.answers = std::exchange(answers_, {});
  for (const Dict& c : device.takeDelegateCalls()) {
    auto variables = c.getDict("arguments").value_or(Dict{}).getDict("variables");
    if (c.getString("operation") == "trackCustomEventFor" && variables &&
        variables->getString("event_action") == "Bridge Analytics") {
      outcome.reported.push_back(variables->getString("event_label").value_or("?"));
    } else {
      outcome.hostCalls.push_back(json::write(c));
    }
  }
  return outcome;
}

}  // namespace vantu::testing_support
