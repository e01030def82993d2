// libFuzzer target for the headless runner's line reader: each line of the
// input is one runner line (a bridge call, a scenario fragment, a user's
// action, time moving on) for a runner on the simulated device. Every line
// that is not blank must be answered with one JSON object line that names
// it; nothing may crash, hang or leak.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/support/fuzz_device.h"
#include "platforms/sim/headless_runner.h"
#include "vantu/value/json.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace vantu;
  const std::string_view input(reinterpret_cast<const char*>(bytes), size);
  auto device = fuzzing::makeDevice(fuzzing::referenceScenario(fuzzing::DeviceState::held));
  sim::HeadlessRunner runner(*device, sim::RunnerOptions{.settleTimeout = std::chrono::seconds(20)});

  std::int64_t lineNumber = 0;
  for (std::size_t at = 0; at <= input.size();) {
    const auto end = std::min(input.find('\n', at), input.size());
    const std::string_view line = input.substr(at, end - at);
    at = end + 1;
    ++lineNumber;
    const auto output = runner.processLine(line);
    if (!output) {
      if (line.find_first_not_of(" \t\r\n") != std::string_view::npos) fuzzing::finding("a line got no answer line");
      continue;
    }
    if (output->find('\n') != std::string::npos) fuzzing::finding("an answer line spans lines: " + *output);
    auto parsed = json::parse(*output);
    if (!parsed.ok() || !parsed.value().isDict() || parsed.value().asDict()->getInt("line") != lineNumber) {
      fuzzing::finding("an answer line that does not name its line: " + *output);
    }
    if (parsed.value().asDict()->getBool("settled") == false) fuzzing::finding("a line whose real I/O never came back");
  }
  return 0;
}
