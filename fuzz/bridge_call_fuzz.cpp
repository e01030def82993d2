// libFuzzer target for every bridge's argument binding: an input picks a
// registered bridge, the calling screen and the device's state, and gives
// the call's "data"; the call runs on the simulated device until its loop
// is idle. Nothing may crash, hang or leak; a call gets at most two
// answers, each one a page can receive.
//
// Input: a first line "<bridge> [<screen> [<state>]]", then the JSON object
// of "data" (nothing: an empty one). A name that is no registered bridge
// still picks one (by its hash), so every input calls a bridge; a screen
// the device does not have calls from the default screen, "-" from none.
// States: see DeviceState.
//
//   vantuSaveData shop granted
//   {"key": "k", "value": "v"}

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/support/fuzz_device.h"
#include "vantu/runtime/bridge_registry.h"
#include "vantu/value/json.h"

namespace {

using namespace vantu;

std::vector<std::string_view> words(std::string_view line) {
  std::vector<std::string_view> out;
  std::size_t at = 0;
  while (at < line.size()) {
    const auto start = line.find_first_not_of(' ', at);
    if (start == std::string_view::npos) break;
    const auto end = std::min(line.find(' ', start), line.size());
    out.push_back(line.substr(start, end - start));
    at = end;
  }
  return out;
}

std::uint64_t fnv1a(std::string_view text) {
  std::uint64_t hash = 14695981039346656037ull;
  for (unsigned char c : text) hash = (hash ^ c) * 1099511628211ull;
  return hash;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(bytes), size);
  const auto newline = input.find('\n');
  const auto header = words(input.substr(0, newline));
  const std::string_view dataText = newline == std::string_view::npos ? std::string_view() : input.substr(newline + 1);

  Dict data;
  if (dataText.find_first_not_of(" \t\r\n") != std::string_view::npos) {
    auto parsed = json::parse(dataText);
    if (!parsed.ok() || !parsed.value().isDict()) return -1;  // no page can send it
    data = std::move(*parsed.value().asDict());
  }

  BridgeRegistry registry;
  registerAllBridges(registry);
  const std::vector<std::string> names = registry.names();
  std::string bridge(header.empty() ? std::string_view() : header[0]);
  if (!registry.contains(bridge)) bridge = names[fnv1a(bridge) % names.size()];

  const auto state = fuzzing::deviceStateNamed(header.size() > 2 ? header[2] : "");
  auto device = fuzzing::makeDevice(fuzzing::referenceScenario(state));
  std::shared_ptr<ViewController> screen;
  if (header.size() < 2 || header[1] != "-") {
    screen = device->screen(header.size() > 1 ? header[1] : "");
    if (!screen) screen = device->screen(*device->defaultScreen);
  }

  // A handler may keep its callback past this input (a prompt held up).
  auto answers = std::make_shared<std::vector<Value>>();
  device->dispatch().main()->async([&] {
    registry.dispatch(bridge, H5HandlerInputParams(screen, std::move(data),
                                                   [answers](const Value& answer) { answers->push_back(answer); }));
  });
  if (!fuzzing::runUntilIdle(*device)) fuzzing::finding("the call's real I/O never came back: " + bridge);
  // Bridges answer a call at most twice (an acknowledgement and a result).
  if (answers->size() > 2) fuzzing::finding(bridge + " answered one call more than twice");
  for (const Value& answer : *answers) fuzzing::requireDeliverable(answer);
  return 0;
}
