// Overhead of the bridge spine: one trivial bridge call through the
// registry, with its analytics event sent to a delegate attached to the
// calling screen's parent, compared with the same handler called directly
// without a screen (no analytics).

#include <benchmark/benchmark.h>

#include "platforms/sim/sim_device.h"
#include "platforms/sim/sim_ui.h"
#include "vantu/bridges/host/device_manufacturer_handler.h"
#include "vantu/core/vantu_h5_delegate.h"
#include "vantu/core/view_controller_context.h"
#include "vantu/runtime/bridge_registry.h"

namespace {

using namespace vantu;

class CountingDelegate : public VantuH5Delegate {
 public:
  void trackCustomEventFor(Dict variables, DelegateHandler handler) override {
    events += variables.size();
    handler(true, std::nullopt, std::nullopt);
  }
  std::size_t events = 0;
};

struct World {
  sim::SimDevice device;
  BridgeRegistry registry;
  std::shared_ptr<ViewController> parent;
  std::shared_ptr<ViewController> screen;
  std::shared_ptr<CountingDelegate> delegate = std::make_shared<CountingDelegate>();

  World() {
    device.install();
    registerAllBridges(registry);
    parent = std::make_shared<sim::SimViewController>(device.effects());
    screen = std::make_shared<sim::SimViewController>(device.effects());
    parent->addChild(screen);
    setVH5ViewControllerDelegate(*parent, delegate);
    setUniqueAppIdentifier(*screen, "bench.app");
  }
};

void BM_RegistryCallWithAnalytics(benchmark::State& state) {
  World world;
  std::size_t answers = 0;
  for (auto _ : state) {
    world.registry.dispatch("vantuDeviceManufacturer",
                            H5HandlerInputParams(world.screen, Dict{}, [&answers](const Value&) { ++answers; }));
  }
  const auto iterations = static_cast<std::size_t>(state.iterations());
  if (answers != iterations || world.delegate->events != 6 * iterations) {
    state.SkipWithError("a call was not answered or not reported");
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RegistryCallWithAnalytics);

void BM_DirectCallWithoutScreen(benchmark::State& state) {
  World world;
  auto handler = std::make_shared<DeviceManufacturerHandler>();
  std::size_t answers = 0;
  for (auto _ : state) {
    handler->handleWith(H5HandlerInputParams(nullptr, Dict{}, [&answers](const Value&) { ++answers; }));
  }
  benchmark::DoNotOptimize(answers);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DirectCallWithoutScreen);

}  // namespace

BENCHMARK_MAIN();
