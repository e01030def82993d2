#include "vantu/container/push_window_support.h"

#include "vantu/container/startup_params.h"
#include "vantu/container/vantu_h5_container_customization_constants.h"
#include "vantu/container/vantu_h5_web_view_customization_constants.h"
#include "vantu/core/h5_answers.h"
#include "vantu/core/laizaxlu.h"

namespace vantu::push_window {
namespace {

std::optional<Dict> stringKeyedDict(const Dict& data, std::string_view key) {
  const Value* value = data.find(key);
  const Dict* map = value ? value->asDict() : nullptr;
  if (!map || !map->hasOnlyStringKeys()) return std::nullopt;
  return *map;
}

}  // namespace

std::optional<Dict> bindStartupParams(const Dict& data) {
  if (auto params = stringKeyedDict(data, "params")) return params;
  return stringKeyedDict(data, "param");
}

std::shared_ptr<NavigationController> navigationControllerFor(const ViewController& viewController) {
  if (auto own = viewController.navigationController()) return own;
  if (auto parent = viewController.parent()) return parent->navigationController();
  return nullptr;
}

SplitFlags splitFlags(const Dict& startupParams) {
  SplitFlags flags;
  for (const auto& [key, value] : startupParams) {
    const std::string* name = key.string();
    if (!name) continue;
    if (containerCustomizationConstantFromRawValue(*name)) {
      flags.containerFlags.set(key, value);
    } else if (webViewCustomizationConstantFromRawValue(*name)) {
      flags.webViewFlags.set(key, value);
    }
  }
  return flags;
}

bool pushFromProvider(const std::shared_ptr<ViewController>& caller, NavigationController& navigationController,
                      const std::string& url, const Dict& startupParams, const std::string& uniqueAppId) {
  Dict params = startupParams;
  params.set(StartupParams::url, url);
  SplitFlags flags = splitFlags(startupParams);

  const auto& providers = Laizaxlu::shared().h5DataProviders();
  auto provider = providers ? providers->viewControllerProvider() : nullptr;
  if (!provider) return false;
  auto screen = provider->viewControllerWith(caller, std::move(params), std::move(flags.containerFlags),
                                             std::move(flags.webViewFlags), uniqueAppId);
  if (!screen) return false;
  navigationController.pushViewController(screen, true);
  return true;
}

void checkAndPush(const H5HandlerInputParams& params, const Rules& rules) {
  auto fail = [&params](std::string_view message) { answerFailure(params.callback, message); };
  if (!params.viewController) return fail("Unable to get current H5 Context");
  auto url = params.data.getString("url");
  if (!url) return fail("invalid parameters: no url could be bound in data");
  if (rules.refuseUrl) {
    if (auto refusal = rules.refuseUrl(*url)) return fail(*refusal);
  }
  auto startup = bindStartupParams(params.data);
  if (!startup) return fail("invalid parameters: no params or param could be bound in data");
  auto navigationController = navigationControllerFor(*params.viewController);
  if (!navigationController) return fail("Unable to get nav controller");
  auto appId = rules.appId(params);
  if (!appId) return fail(rules.noAppIdMessage);
  if (!pushFromProvider(params.viewController, *navigationController, *url, *startup, *appId)) {
    return fail(kNoProviderResult);
  }
  // Pushed: the page gets no answer.
}

}  // namespace vantu::push_window
