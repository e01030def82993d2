// libFuzzer target for the scenario and device-profile loaders: a JSON
// text is applied as a scenario to a fresh simulated device (twice: the
// second time as a later fragment over the first), the device's loop runs
// to idle, and the same value is read as a device profile and laid over
// the device's platform. Malformed input must be refused with a reason,
// never crash, hang or leak.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <variant>

#include "fuzz/support/fuzz_device.h"
#include "platforms/sim/device_profile.h"
#include "vantu/value/json.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace vantu;
  auto parsed = json::parse(std::string_view(reinterpret_cast<const char*>(bytes), size));
  if (!parsed.ok()) return -1;  // the JSON reader has its own target
  const Value& value = parsed.value();

  auto device = fuzzing::makeBareDevice();
  for (int pass = 0; pass < 2; ++pass) {
    if (auto error = device->apply(value); error && error->empty()) fuzzing::finding("a scenario refused without a reason");
    if (!fuzzing::runUntilIdle(*device)) fuzzing::finding("applying a scenario left real I/O that never came back");
  }

  auto profile = sim::DeviceProfile::load(value, *device->platformBundle());
  if (const auto* reason = std::get_if<std::string>(&profile)) {
    if (reason->empty()) fuzzing::finding("a device profile refused without a reason");
    return 0;
  }
  Platform overlaid = *device->platformBundle();
  std::get<sim::DeviceProfile>(profile).installInto(overlaid);
  if (!fuzzing::runUntilIdle(*device)) fuzzing::finding("loading a device profile left real I/O that never came back");
  return 0;
}
