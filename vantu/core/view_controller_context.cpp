#include "vantu/core/view_controller_context.h"

#include "vantu/core/fatal.h"

namespace vantu {
namespace {

const AssociationKey kDelegateKey{"VH5ViewControllerDelegate"};
const AssociationKey kUniqueAppIdentifierKey{"uniqueAppIdentifier"};
const AssociationKey kIsH5Key{"isH5"};
const AssociationKey kIsHcKey{"isHc"};
const AssociationKey kTopSafeAreaKey{"topSafeAreaTreatmentRequired"};
const AssociationKey kBottomSafeAreaKey{"bottomSafeAreaTreatmentRequired"};
const AssociationKey kContextObjectKey{"contextObject"};
const AssociationKey kOffsetFixerKey{"offsetFixer"};
const AssociationKey kAppTypeKey{"appType"};

template <class T>
std::optional<T> read(const ViewController& vc, const AssociationKey& key) {
  if (const T* value = vc.associations().get<T>(key)) return *value;
  return std::nullopt;
}

template <class T>
void store(ViewController& vc, const AssociationKey& key, std::optional<T> value) {
  if (value) {
    vc.associations().set(key, std::move(*value));
  } else {
    vc.associations().remove(key);
  }
}

// Self, parent, grandparent: the first level holding a value wins.
template <class Read>
auto byAncestorRule(const ViewController& vc, Read read) -> decltype(read(vc)) {
  if (auto value = read(vc)) return value;
  auto parent = vc.parent();
  if (!parent) return {};
  if (auto value = read(*parent)) return value;
  auto grandparent = parent->parent();
  if (!grandparent) return {};
  return read(*grandparent);
}

std::shared_ptr<Object> requireObject(const ViewController& vc, const AssociationKey& key) {
  const auto* object = vc.associations().get<std::shared_ptr<Object>>(key);
  if (!object) fatalError(std::string("read of the attached value '") + key.name + "' before it was set");
  return *object;
}

}  // namespace

std::shared_ptr<Object> getVH5ViewControllerDelegate(const ViewController& vc) {
  return read<std::shared_ptr<Object>>(vc, kDelegateKey).value_or(nullptr);
}

void setVH5ViewControllerDelegate(ViewController& vc, std::shared_ptr<Object> delegate) {
  if (delegate) vc.associations().set(kDelegateKey, std::move(delegate));
}

std::optional<std::string> getUniqueAppIdentifier(const ViewController& vc) {
  return read<std::string>(vc, kUniqueAppIdentifierKey);
}

void setUniqueAppIdentifier(ViewController& vc, std::optional<std::string> id) {
  if (id) vc.associations().set(kUniqueAppIdentifierKey, std::move(*id));
}

std::optional<bool> getIsH5(const ViewController& vc) { return read<bool>(vc, kIsH5Key); }

void setIsH5(ViewController& vc, std::optional<bool> value) {
  if (value) vc.associations().set(kIsH5Key, *value);
}

std::optional<bool> getIsHc(const ViewController& vc) { return read<bool>(vc, kIsHcKey); }
void setIsHc(ViewController& vc, std::optional<bool> value) { store(vc, kIsHcKey, value); }

std::optional<bool> getTopSafeAreaTreatmentRequired(const ViewController& vc) { return read<bool>(vc, kTopSafeAreaKey); }
void setTopSafeAreaTreatmentRequired(ViewController& vc, std::optional<bool> value) { store(vc, kTopSafeAreaKey, value); }

std::optional<bool> getBottomSafeAreaTreatmentRequired(const ViewController& vc) {
  return read<bool>(vc, kBottomSafeAreaKey);
}
void setBottomSafeAreaTreatmentRequired(ViewController& vc, std::optional<bool> value) {
  store(vc, kBottomSafeAreaKey, value);
}

std::shared_ptr<Object> getContextObject(const ViewController& vc) { return requireObject(vc, kContextObjectKey); }
void setContextObject(ViewController& vc, std::shared_ptr<Object> object) {
  vc.associations().set(kContextObjectKey, std::move(object));
}

std::shared_ptr<Object> getOffsetFixer(const ViewController& vc) { return requireObject(vc, kOffsetFixerKey); }
void setOffsetFixer(ViewController& vc, std::shared_ptr<Object> fixer) {
  vc.associations().set(kOffsetFixerKey, std::move(fixer));
}

AppType getAppType(const ViewController& vc) {
  auto text = read<std::string>(vc, kAppTypeKey);
  return text && *text == "miniapp" ? AppType::miniapp : AppType::generic;
}

void setAppType(ViewController& vc, AppType type) { setAppTypeText(vc, std::string(rawValue(type))); }
void setAppTypeText(ViewController& vc, std::string text) { vc.associations().set(kAppTypeKey, std::move(text)); }

std::shared_ptr<Object> getVH5ViewControllerDelegateRecursively(const ViewController& vc) {
  return byAncestorRule(vc, [](const ViewController& v) { return getVH5ViewControllerDelegate(v); });
}

std::optional<std::string> getUniqueAppIdentifierRecursively(const ViewController& vc) {
  return byAncestorRule(vc, [](const ViewController& v) { return getUniqueAppIdentifier(v); });
}

bool isH5ViewController(const ViewController& vc) {
  return byAncestorRule(vc, [](const ViewController& v) { return getIsH5(v); }).value_or(false);
}

bool isHcViewController(const ViewController& vc) {
  return byAncestorRule(vc, [](const ViewController& v) { return getIsHc(v); }).value_or(false);
}

bool getIsH5Val(const ViewController& vc) { return getIsH5(vc).value_or(false); }

std::shared_ptr<ViewController> extractH5ViewController(ViewController& vc) {
  if (getIsH5Val(vc)) return vc.shared_from_this();
  auto parent = vc.parent();
  if (!parent) return nullptr;
  if (getIsH5Val(*parent)) return parent;
  auto grandparent = parent->parent();
  if (grandparent && getIsH5Val(*grandparent)) return grandparent;
  return nullptr;
}

}  // namespace vantu
