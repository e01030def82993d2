#include <memory>
#include <string>
#include <string_view>

#include "vantu/core/h5_answers.h"
#include "vantu/core/h5_base_handler.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/core/view_controller_context.h"
#include "vantu/runtime/bridge_registry.h"

// vantu.invoke("hostGreeting", {name: "Lan"}) -> {"data": "Hello, Lan (com.example.shop)"}
class GreetingBridge : public vantu::H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "hostGreeting";

  void handleWith(vantu::H5HandlerInputParams params) override {
    trackData(kBridgeName, params);  // reported to the delegate's analytics
    auto name = params.data.getString("name");
    if (!name) return vantu::answerFailure(params.callback, "hostGreeting needs a name");
    std::string app;
    if (params.viewController) app = vantu::getUniqueAppIdentifierRecursively(*params.viewController).value_or("");
    params.callback(vantu::payload::success(vantu::Value("Hello, " + *name + " (" + app + ")")));
  }
};

// The built-in bridges and the host's own; one registry per container.
std::shared_ptr<vantu::BridgeRegistry> makeRegistry() {
  auto registry = std::make_shared<vantu::BridgeRegistry>();
  vantu::registerAllBridges(*registry);
  registry->add<GreetingBridge>();
  return registry;
}
