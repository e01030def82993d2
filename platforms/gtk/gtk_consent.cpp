#include "platforms/gtk/gtk_consent.h"

#include <map>
#include <vector>

#include "platforms/gtk/gtk_dialog_parts.h"

namespace vantu::gtk {
namespace {

using linux_platform::PermissionStore;

struct Wording {
  const char* title;    // on the settings page
  const char* request;  // completes "Allow “app” to ..."
};

Wording wordingFor(ProtectedResource resource) {
  switch (resource) {
    case ProtectedResource::camera:
      return {"Camera", "use your camera"};
    case ProtectedResource::photoLibrary:
      return {"Photos", "access your photos"};
    case ProtectedResource::location:
      return {"Location", "use your location while you are using the app"};
    case ProtectedResource::microphone:
      return {"Microphone", "use your microphone"};
    case ProtectedResource::contacts:
      return {"Contacts", "access your contacts"};
    case ProtectedResource::speechRecognition:
      return {"Speech Recognition", "use speech recognition"};
  }
  return {"", ""};
}

const char* stateLabel(ProtectedResource resource, AuthorizationState state) {
  switch (state) {
    case AuthorizationState::notDetermined:
      return "Ask Next Time";
    case AuthorizationState::denied:
      return "Don't Allow";
    case AuthorizationState::restricted:
      return "Restricted";
    case AuthorizationState::authorized:
      return resource == ProtectedResource::location ? "Always" : "Allow";
    case AuthorizationState::authorizedWhenInUse:
      return "While Using the App";
    case AuthorizationState::limited:
      return "Selected Photos";
    case AuthorizationState::unrecognized:
      break;
  }
  return "";
}

// ---- consent prompt ----

std::map<ProtectedResource, ShownConsentPrompt>& shownPrompts() {
  static std::map<ProtectedResource, ShownConsentPrompt> prompts;
  return prompts;
}

/// Held by the prompt window's buttons; answers once.
struct PendingAnswer {
  ProtectedResource resource;
  linux_platform::ConsentPrompt::Answer answer;

  void give(bool allowed) {
    auto it = shownPrompts().find(resource);
    if (it == shownPrompts().end()) return;  // answered already
    GtkWindow* window = it->second.window;
    shownPrompts().erase(it);
    auto answerNow = std::move(answer);
    gtk_window_destroy(window);
    answerNow(allowed);
  }
};

}  // namespace

std::string consentQuestion(const std::string& appName, ProtectedResource resource) {
  return "Allow \u201c" + appName + "\u201d to " + wordingFor(resource).request + "?";
}

void GtkConsentPrompt::show(ProtectedResource resource, Answer answer) {
  GtkWidget* content = nullptr;
  GtkWidget* row = nullptr;
  GtkWindow* window = newDialogWindow(appName_, content, row);
  gtk_window_set_default_size(window, 340, -1);
  GtkWidget* question = gtk_label_new(consentQuestion(appName_, resource).c_str());
  gtk_label_set_wrap(GTK_LABEL(question), TRUE);
  gtk_widget_add_css_class(question, "title-4");
  gtk_box_append(GTK_BOX(content), question);

  auto pending = std::make_shared<PendingAnswer>(PendingAnswer{resource, std::move(answer)});
  GtkWidget* deny = button("Don't Allow", [pending] { pending->give(false); });
  GtkWidget* allow = button(resource == ProtectedResource::location ? "Allow While Using App" : "Allow",
                            [pending] { pending->give(true); });
  gtk_widget_add_css_class(allow, "suggested-action");
  gtk_box_append(GTK_BOX(row), deny);
  gtk_box_append(GTK_BOX(row), allow);
  gtk_box_append(GTK_BOX(content), row);
  onCloseRequest(window, [pending] { pending->give(false); });
  // A window destroyed unanswered (the app closing) leaves no stale entry.
  g_signal_connect(window, "destroy", G_CALLBACK(+[](GtkWidget* destroyed, gpointer data) {
                     auto it = shownPrompts().find(static_cast<ProtectedResource>(GPOINTER_TO_INT(data)));
                     if (it != shownPrompts().end() && GTK_WIDGET(it->second.window) == destroyed) shownPrompts().erase(it);
                   }),
                   GINT_TO_POINTER(static_cast<int>(resource)));
  shownPrompts()[resource] = {window, question, deny, allow};
  gtk_window_present(window);
}

const ShownConsentPrompt* shownConsentPrompt(ProtectedResource resource) {
  auto it = shownPrompts().find(resource);
  return it == shownPrompts().end() ? nullptr : &it->second;
}

// ---- settings page ----

namespace {

struct SettingsPage {
  GtkWindow* window = nullptr;
  std::weak_ptr<PermissionStore> store;
  std::map<ProtectedResource, GtkDropDown*> choices;
  std::shared_ptr<void> observation;
};

std::unique_ptr<SettingsPage>& openPage() {
  static std::unique_ptr<SettingsPage> page;
  return page;
}

guint indexOf(ProtectedResource resource, AuthorizationState state) {
  const auto states = PermissionStore::statesFor(resource);
  for (guint i = 0; i < states.size(); ++i)
    if (states[i] == state) return i;
  return 0;
}

void onChoice(GtkDropDown* dropDown, GParamSpec*, gpointer) {
  auto& page = openPage();
  auto store = page ? page->store.lock() : nullptr;
  if (!store) return;
  const auto resource = static_cast<ProtectedResource>(GPOINTER_TO_INT(g_object_get_data(G_OBJECT(dropDown), "vantu-resource")));
  const auto states = PermissionStore::statesFor(resource);
  const guint selected = gtk_drop_down_get_selected(dropDown);
  if (selected < states.size()) store->set(resource, states[selected]);
}

GtkWidget* choiceFor(ProtectedResource resource, AuthorizationState current) {
  std::vector<const char*> labels;
  for (auto state : PermissionStore::statesFor(resource)) labels.push_back(stateLabel(resource, state));
  labels.push_back(nullptr);
  GtkWidget* dropDown = gtk_drop_down_new_from_strings(labels.data());
  gtk_drop_down_set_selected(GTK_DROP_DOWN(dropDown), indexOf(resource, current));
  g_object_set_data(G_OBJECT(dropDown), "vantu-resource", GINT_TO_POINTER(static_cast<int>(resource)));
  g_signal_connect(dropDown, "notify::selected", G_CALLBACK(onChoice), nullptr);
  return dropDown;
}

}  // namespace

void openSettingsPage(const std::shared_ptr<PermissionStore>& store, const std::string& appName) {
  if (!store) return;
  auto& page = openPage();
  if (page && page->store.lock() == store) {
    gtk_window_present(page->window);
    return;
  }
  if (page) gtk_window_destroy(page->window);  // a page over another store

  auto fresh = std::make_unique<SettingsPage>();
  fresh->store = store;
  fresh->window = newWindowOverParent(appName + " Settings", 380, false);

  GtkWidget* content = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
  setDialogMargins(content);
  GtkWidget* heading = gtk_label_new(("Allow \u201c" + appName + "\u201d to access").c_str());
  gtk_widget_set_halign(heading, GTK_ALIGN_START);
  gtk_widget_add_css_class(heading, "title-4");
  gtk_box_append(GTK_BOX(content), heading);
  GtkWidget* grid = gtk_grid_new();
  gtk_grid_set_row_spacing(GTK_GRID(grid), 8);
  gtk_grid_set_column_spacing(GTK_GRID(grid), 18);
  int row = 0;
  for (auto resource : PermissionStore::resources()) {
    GtkWidget* name = gtk_label_new(wordingFor(resource).title);
    gtk_widget_set_halign(name, GTK_ALIGN_START);
    gtk_widget_set_hexpand(name, TRUE);
    GtkWidget* choice = choiceFor(resource, store->state(resource));
    gtk_grid_attach(GTK_GRID(grid), name, 0, row, 1, 1);
    gtk_grid_attach(GTK_GRID(grid), choice, 1, row, 1, 1);
    fresh->choices[resource] = GTK_DROP_DOWN(choice);
    ++row;
  }
  gtk_box_append(GTK_BOX(content), grid);
  gtk_window_set_child(fresh->window, content);

  // Decisions made elsewhere (a prompt answered meanwhile) show up here;
  // selecting the stored state again changes nothing in the store.
  fresh->observation = store->observe([](ProtectedResource resource, AuthorizationState state) {
    auto& shown = openPage();
    if (!shown) return;
    auto it = shown->choices.find(resource);
    if (it != shown->choices.end()) gtk_drop_down_set_selected(it->second, indexOf(resource, state));
  });
  g_signal_connect(fresh->window, "destroy", G_CALLBACK(+[](GtkWidget* window, gpointer) {
                     auto& shown = openPage();
                     if (shown && GTK_WIDGET(shown->window) == window) shown.reset();
                   }),
                   nullptr);
  page = std::move(fresh);
  gtk_window_present(page->window);
}

GtkWindow* settingsPageWindow() { return openPage() ? openPage()->window : nullptr; }

GtkDropDown* settingsPageChoice(ProtectedResource resource) {
  auto& page = openPage();
  if (!page) return nullptr;
  auto it = page->choices.find(resource);
  return it == page->choices.end() ? nullptr : it->second;
}

}  // namespace vantu::gtk
