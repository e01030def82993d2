#pragma once
// The permission dialogs of the container.
//
// The consent prompt is a modal window over the container window asking
// "Allow “<app>” to use your camera?" with "Don't Allow" and "Allow" ("Allow
// While Using App" for the location, which grants while-in-use access).
// Closing it from the window manager refuses.
//
// The settings page is a window listing every protected resource with its
// current decision in a drop-down that offers only the states that resource
// can take. A choice is stored at once, and the store tells its observers
// (location managers among them); decisions made elsewhere while the page
// is open show up in it. `Application::openSettingsPage` opens it ("Open
// Settings" in the library's settings alert leads there); opening it again
// brings the open page to the front.

#include <gtk/gtk.h>

#include <memory>
#include <string>

#include "platforms/linux/consent_prompt.h"
#include "platforms/linux/permission_store.h"

namespace vantu::gtk {

class GtkConsentPrompt : public linux_platform::ConsentPrompt {
 public:
  explicit GtkConsentPrompt(std::string appName) : appName_(std::move(appName)) {}

 protected:
  void show(ProtectedResource resource, Answer answer) override;

 private:
  std::string appName_;
};

/// The question the prompt asks for `resource`.
std::string consentQuestion(const std::string& appName, ProtectedResource resource);

/// The prompt on screen for `resource`, if any (tests).
struct ShownConsentPrompt {
  GtkWindow* window = nullptr;
  GtkWidget* question = nullptr;
  GtkWidget* deny = nullptr;
  GtkWidget* allow = nullptr;
};
const ShownConsentPrompt* shownConsentPrompt(ProtectedResource resource);

/// Opens the settings page over `store`, or brings it to the front. Does
/// nothing without a store.
void openSettingsPage(const std::shared_ptr<linux_platform::PermissionStore>& store, const std::string& appName);
/// The settings page's window, or nullptr when it is not open.
GtkWindow* settingsPageWindow();
/// The drop-down of `resource` on the open settings page (nullptr when
/// closed); its items are `PermissionStore::statesFor(resource)` in order.
GtkDropDown* settingsPageChoice(ProtectedResource resource);

}  // namespace vantu::gtk
