// The basic scenario sections: app bundle facts, scripted objects, the
// environment's providers and the screen tree.

#include <fmt/format.h>

#include "platforms/sim/scenario.h"
#include "platforms/sim/sim_device.h"
#include "platforms/sim/sim_host_delegate.h"
#include "platforms/sim/sim_view_controller_provider.h"
#include "vantu/core/h5_data_providers.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/core/view_controller_context.h"

namespace vantu::sim {
namespace {

using Error = std::optional<std::string>;

/// A plain object that is not a host delegate.
class SimPlainObject : public Object {};

Error unknownField(const Key& key) { return "unknown field \"" + key.text() + "\""; }

std::optional<Rect> readRect(const Value& value) {
  const Array* a = value.asArray();
  if (!a || a->size() != 4) return std::nullopt;
  double v[4];
  for (std::size_t i = 0; i < 4; ++i) {
    auto n = (*a)[i].asNumber();
    if (!n) return std::nullopt;
    v[i] = *n;
  }
  return Rect{v[0], v[1], v[2], v[3]};
}

Error readOptionalBool(const Dict& given, std::string_view key, std::optional<bool>& out) {
  const Value* v = given.find(key);
  if (!v || v->isNull()) return std::nullopt;
  if (!v->isBool()) return fmt::format("\"{}\" must be a boolean", key);
  out = *v->asBool();
  return std::nullopt;
}

Error loadAnswer(SimHostDelegate& delegate, const Key& operation, const Value& given) {
  std::optional<ScriptedAnswer> answer;
  if (const std::string* text = given.asString()) {
    if (*text != "default") return fmt::format("answer for \"{}\" must be an object or \"default\"", operation.text());
  } else {
    auto parsed = parseScriptedAnswer(given);
    if (auto* reason = std::get_if<std::string>(&parsed)) return fmt::format("answer for \"{}\": {}", operation.text(), *reason);
    answer = std::get<ScriptedAnswer>(parsed);
  }
  if (operation.text() == "otherwise") {
    delegate.scriptOtherwise(answer);
    return std::nullopt;
  }
  bool known = false;
  for (auto op : kDelegateOperations) known = known || op == operation.text();
  if (!known) return fmt::format("unknown delegate operation \"{}\"", operation.text());
  delegate.script(operation.text(), answer);
  return std::nullopt;
}

Error loadObject(SimDevice& device, const std::string& name, const Value& given) {
  const Dict* d = given.asDict();
  if (!d) return fmt::format("\"{}\" must be an object", name);
  auto kind = d->getString("kind").value_or("delegate");
  if (kind == "object") {
    device.addObject(name, std::make_shared<SimPlainObject>());
    return std::nullopt;
  }
  if (kind != "delegate") return fmt::format("\"{}\": kind must be \"delegate\" or \"object\"", name);
  if (auto e = loadDelegate(*device.makeDelegate(name), *d)) return fmt::format("\"{}\": {}", name, *e);
  return std::nullopt;
}

Error buildView(SimDevice& device, View& parent, const Value& given, const std::string& path) {
  const Dict* d = given.asDict();
  if (!d) return path + " must be an object";
  auto kind = d->getString("kind").value_or("view");
  auto name = d->getString("name").value_or("");
  Rect frame{};
  if (const Value* f = d->find("frame")) {
    auto r = readRect(*f);
    if (!r) return path + ".frame must be [x, y, width, height]";
    frame = *r;
  }
  std::shared_ptr<View> view;
  if (kind == "webView") {
    view = SimWebView::make(device.effects(), frame, name);
  } else if (kind == "scrollView") {
    view = std::make_shared<SimScrollView>(device.effects(), frame);
  } else if (kind == "view") {
    view = std::make_shared<SimView>(device.effects(), frame);
  } else {
    return path + ".kind must be \"view\", \"webView\" or \"scrollView\"";
  }
  view->setName(name);
  if (auto tag = d->getInt("tag")) view->setTag(*tag);
  parent.addSubview(view);
  if (auto subviews = d->getArray("subviews")) {
    for (std::size_t i = 0; i < subviews->size(); ++i) {
      if (auto e = buildView(device, *view, (*subviews)[i], fmt::format("{}.subviews[{}]", path, i))) return e;
    }
  }
  return std::nullopt;
}

Error attachValues(SimDevice& device, ViewController& vc, const Dict& given, const std::string& path) {
  if (const Value* delegate = given.find("delegate"); delegate && !delegate->isNull()) {
    const std::string* name = delegate->asString();
    if (!name) return path + ".delegate must be the name of an entry of \"delegates\"";
    auto object = device.object(*name);
    if (!object) return fmt::format("{}.delegate: no delegate named \"{}\"", path, *name);
    setVH5ViewControllerDelegate(vc, object);
  }
  if (const Value* id = given.find("uniqueAppIdentifier"); id && !id->isNull()) {
    if (!id->isString()) return path + ".uniqueAppIdentifier must be a string";
    setUniqueAppIdentifier(vc, *id->asString());
  }
  std::optional<bool> flag;
  if (auto e = readOptionalBool(given, "isH5", flag)) return path + ": " + *e;
  setIsH5(vc, flag);
  flag.reset();
  if (auto e = readOptionalBool(given, "isHc", flag)) return path + ": " + *e;
  if (flag) setIsHc(vc, flag);
  flag.reset();
  if (auto e = readOptionalBool(given, "topSafeAreaTreatmentRequired", flag)) return path + ": " + *e;
  if (flag) setTopSafeAreaTreatmentRequired(vc, flag);
  flag.reset();
  if (auto e = readOptionalBool(given, "bottomSafeAreaTreatmentRequired", flag)) return path + ": " + *e;
  if (flag) setBottomSafeAreaTreatmentRequired(vc, flag);
  if (const Value* type = given.find("appType"); type && !type->isNull()) {
    if (!type->isString()) return path + ".appType must be a string";
    setAppTypeText(vc, *type->asString());
  }
  return std::nullopt;
}

Error buildScreen(SimDevice& device, const Value& given, const std::string& path,
                  std::shared_ptr<ViewController>& out) {
  const Dict* d = given.asDict();
  if (!d) return path + " must be an object";
  auto name = d->getString("name");
  if (!name || name->empty()) return path + ".name must be a non-empty string";
  if (device.hasScreen(*name)) return fmt::format("{}: a screen named \"{}\" exists already", path, *name);
  static constexpr std::string_view kFields[] = {
      "name", "kind", "children", "view", "delegate", "uniqueAppIdentifier", "isH5", "isHc",
      "topSafeAreaTreatmentRequired", "bottomSafeAreaTreatmentRequired", "appType", "navigationBar",
      "keyboardOffsetFixer"};
  for (const auto& [key, value] : *d) {
    bool known = false;
    for (auto field : kFields) known = known || key.text() == field;
    if (!known) return path + ": " + *unknownField(key);
  }

  std::optional<bool> keyboardOffsetFixer;
  if (auto e = readOptionalBool(*d, "keyboardOffsetFixer", keyboardOffsetFixer)) return path + ": " + *e;

  auto kind = d->getString("kind").value_or("viewController");
  std::shared_ptr<ViewController> vc;
  if (kind == "navigation") {
    auto nav = std::make_shared<SimNavigationController>(device.effects());
    nav->navigationBar()->setName(*name + ".navigationBar");
    if (const Value* bar = d->find("navigationBar")) {
      const Dict* b = bar->asDict();
      if (!b) return path + ".navigationBar must be an object";
      if (auto hidden = b->getBool("hidden")) nav->navigationBar()->setHidden(*hidden);
      if (auto height = b->getNumber("height")) nav->navigationBar()->setFrame(Rect{0, 0, 390, *height});
    }
    vc = nav;
  } else if (kind == "tabBar") {
    vc = std::make_shared<SimTabBarController>(device.effects());
  } else if (kind == "viewController") {
    vc = std::make_shared<SimViewController>(device.effects());
  } else {
    return path + ".kind must be \"viewController\", \"navigation\" or \"tabBar\"";
  }
  vc->setName(*name);
  device.addScreen(*name, vc);
  if (auto e = attachValues(device, *vc, *d, path)) return e;

  if (const Value* view = d->find("view")) {
    const Dict* v = view->asDict();
    if (!v) return path + ".view must be an object";
    auto root = vc->view();
    if (auto f = v->find("frame")) {
      auto r = readRect(*f);
      if (!r) return path + ".view.frame must be [x, y, width, height]";
      root->setFrame(*r);
    }
    if (auto subviews = v->getArray("subviews")) {
      for (std::size_t i = 0; i < subviews->size(); ++i) {
        if (auto e = buildView(device, *root, (*subviews)[i], fmt::format("{}.view.subviews[{}]", path, i))) return e;
      }
    }
  }
  if (const Value* children = d->find("children")) {
    const Array* list = children->asArray();
    if (!list) return path + ".children must be an array";
    for (std::size_t i = 0; i < list->size(); ++i) {
      std::shared_ptr<ViewController> child;
      if (auto e = buildScreen(device, (*list)[i], fmt::format("{}.children[{}]", path, i), child)) return e;
      vc->addChild(child);
    }
  }
  // Last: the fixer is made for the web view found in the finished tree
  // (the screen's own views first, then its children's).
  if (keyboardOffsetFixer.value_or(false)) Laizaxlu::shared().attachKeyboardOffsetFixer(*vc);
  out = vc;
  return std::nullopt;
}

/// {"returns": "screen"}: makes a container screen per request;
/// {"returns": null} or null: answers every request with nothing.
Error loadViewControllerProvider(SimDevice& device, const Value& given,
                                 std::shared_ptr<H5ViewControllerProvider>& out) {
  if (given.isNull()) return std::nullopt;
  const Dict* d = given.asDict();
  if (!d) return std::string("\"viewControllerProvider\" must be an object or null");
  bool makesScreens = false;
  for (const auto& [key, v] : *d) {
    if (key.text() != "returns") return "\"viewControllerProvider\": " + *unknownField(key);
    if (v.isNull()) continue;
    if (v.asString() == nullptr || *v.asString() != "screen") {
      return std::string("\"viewControllerProvider.returns\" must be \"screen\" or null");
    }
    makesScreens = true;
  }
  out = std::make_shared<SimViewControllerProvider>(device, makesScreens);
  return std::nullopt;
}

}  // namespace

Error loadDelegate(SimHostDelegate& delegate, const Dict& given) {
  for (const auto& [key, value] : given) {
    if (key.text() == "kind") continue;
    if (key.text() == "otherwise") {
      if (auto e = loadAnswer(delegate, key, value)) return e;
    } else if (key.text() == "answers") {
      const Dict* answers = value.asDict();
      if (!answers) return std::string("\"answers\" must be an object");
      for (const auto& [op, answer] : *answers) {
        if (auto e = loadAnswer(delegate, op, answer)) return e;
      }
    } else {
      return unknownField(key);
    }
  }
  return std::nullopt;
}

Error loadAppSection(SimDevice& device, const Value& value) {
  const Dict* d = value.asDict();
  if (!d) return std::string("must be an object");
  for (const auto& [key, v] : *d) {
    if (key.text() != "info") return unknownField(key);
    if (v.isNull()) {
      device.facts().info.reset();
    } else if (const Dict* info = v.asDict()) {
      device.facts().info = *info;
    } else {
      return std::string("\"info\" must be an object or null");
    }
  }
  return std::nullopt;
}

Error loadObjectsSection(SimDevice& device, const Value& value) {
  const Dict* d = value.asDict();
  if (!d) return std::string("must be an object of named delegates");
  for (const auto& [name, given] : *d) {
    if (auto e = loadObject(device, name.text(), given)) return e;
  }
  return std::nullopt;
}

Error loadEnvironmentSection(SimDevice& device, const Value& value) {
  if (value.isNull()) {
    Laizaxlu::shared().setupWith(nullptr);
    return std::nullopt;
  }
  const Dict* d = value.asDict();
  if (!d) return std::string("must be an object or null");
  std::shared_ptr<VantuH5Delegate> delegate;
  std::shared_ptr<H5ViewControllerProvider> viewControllerProvider;
  for (const auto& [key, v] : *d) {
    if (key.text() == "viewControllerProvider") {
      if (auto e = loadViewControllerProvider(device, v, viewControllerProvider)) return e;
      continue;
    }
    if (key.text() != "delegate") return unknownField(key);
    if (v.isNull()) continue;
    const std::string* name = v.asString();
    if (!name) return std::string("\"delegate\" must be the name of an entry of \"delegates\"");
    auto object = device.object(*name);
    if (!object) return fmt::format("no delegate named \"{}\"", *name);
    delegate = std::dynamic_pointer_cast<VantuH5Delegate>(object);
    if (!delegate) return fmt::format("\"{}\" is not a delegate", *name);
  }
  Laizaxlu::shared().setupWith(std::make_shared<H5DataProviders>(viewControllerProvider, nullptr, delegate));
  return std::nullopt;
}

Error loadScreensSection(SimDevice& device, const Value& value) {
  const Array* list = value.asArray();
  if (!list) return std::string("must be an array of screens");
  device.clearScreens();
  for (std::size_t i = 0; i < list->size(); ++i) {
    std::shared_ptr<ViewController> root;
    if (auto e = buildScreen(device, (*list)[i], fmt::format("[{}]", i), root)) return e;
    if (i == 0) device.application().keyWindow()->setRootViewController(root);
  }
  return std::nullopt;
}

Error loadDefaultScreenSection(SimDevice& device, const Value& value) {
  if (value.isNull()) {
    device.defaultScreen.reset();
    return std::nullopt;
  }
  const std::string* name = value.asString();
  if (!name) return std::string("must be a screen name or null");
  if (!device.hasScreen(*name)) return fmt::format("no screen named \"{}\"", *name);
  device.defaultScreen = *name;
  return std::nullopt;
}

}  // namespace vantu::sim
