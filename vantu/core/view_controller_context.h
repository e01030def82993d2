#pragma once
// Values the library attaches to a screen's view controller, and their
// lookup through the containment chain.
//
// The ancestor rule: read the value on the view controller; if absent, on
// its parent; if still absent, on the parent's parent. The first present
// value wins (a present false included); nothing above the grandparent is
// looked at.

#include <memory>
#include <optional>
#include <string>

#include "vantu/core/app_type.h"
#include "vantu/platform/view_controller.h"

namespace vantu {

// --- Attached values. Setters marked "nil ignored" keep the earlier value
// when given nothing; the others store what they are given (nothing clears).

/// The host's delegate object for this screen (any object; a bridge checks
/// that it is a VantuH5Delegate).
std::shared_ptr<Object> getVH5ViewControllerDelegate(const ViewController& vc);
void setVH5ViewControllerDelegate(ViewController& vc, std::shared_ptr<Object> delegate);  // nil ignored

std::optional<std::string> getUniqueAppIdentifier(const ViewController& vc);
void setUniqueAppIdentifier(ViewController& vc, std::optional<std::string> id);  // nil ignored

std::optional<bool> getIsH5(const ViewController& vc);
void setIsH5(ViewController& vc, std::optional<bool> value);  // nil ignored

/// Whether the screen is a host container screen (not a web page).
std::optional<bool> getIsHc(const ViewController& vc);
void setIsHc(ViewController& vc, std::optional<bool> value);

std::optional<bool> getTopSafeAreaTreatmentRequired(const ViewController& vc);
void setTopSafeAreaTreatmentRequired(ViewController& vc, std::optional<bool> value);

std::optional<bool> getBottomSafeAreaTreatmentRequired(const ViewController& vc);
void setBottomSafeAreaTreatmentRequired(ViewController& vc, std::optional<bool> value);

/// Reading either of these before it was ever set stops the process.
std::shared_ptr<Object> getContextObject(const ViewController& vc);
void setContextObject(ViewController& vc, std::shared_ptr<Object> object);
std::shared_ptr<Object> getOffsetFixer(const ViewController& vc);
void setOffsetFixer(ViewController& vc, std::shared_ptr<Object> fixer);

/// Stored as its raw text; reads `miniapp` only for the exact text "miniapp".
AppType getAppType(const ViewController& vc);
void setAppType(ViewController& vc, AppType type);
/// Stores any text as the app type (what a host that writes the value
/// itself may leave there).
void setAppTypeText(ViewController& vc, std::string text);

// --- Lookups. The contract calls them "Recursively", but they follow the
// ancestor rule: self, parent, grandparent, no further.

/// The delegate by the ancestor rule.
std::shared_ptr<Object> getVH5ViewControllerDelegateRecursively(const ViewController& vc);
/// The unique app id by the ancestor rule.
std::optional<std::string> getUniqueAppIdentifierRecursively(const ViewController& vc);
/// isH5 / isHc by the ancestor rule; false when absent.
bool isH5ViewController(const ViewController& vc);
bool isHcViewController(const ViewController& vc);
/// This view controller's own isH5 ("Val": the value, not the optional; no
/// ancestors); false if absent.
bool getIsH5Val(const ViewController& vc);
/// The nearest of self, parent, grandparent whose isH5 is present and true.
std::shared_ptr<ViewController> extractH5ViewController(ViewController& vc);

}  // namespace vantu
