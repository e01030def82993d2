#include "platforms/gtk/gtk_password_prompt.h"

#include <string>
#include <utility>

#include "platforms/gtk/gtk_dialog_parts.h"

namespace vantu::gtk {
namespace {

struct Prompt;
Prompt*& current() {
  static Prompt* prompt = nullptr;
  return prompt;
}

/// One dialog: its widgets and the answer still owed.
struct Prompt {
  PasswordDialog dialog;
  linux_platform::PasswordPrompt::Answer answer;

  /// Answers once (nothing: cancelled) and closes the dialog.
  void finish(bool submit) {
    if (!answer) return;
    std::optional<linux_platform::Secret> secret;
    if (submit) secret.emplace(gtk_editable_get_text(GTK_EDITABLE(dialog.entry)));
    gtk_editable_set_text(GTK_EDITABLE(dialog.entry), "");
    auto give = std::exchange(answer, nullptr);
    if (current() == this) current() = nullptr;
    gtk_window_destroy(dialog.window);  // frees this prompt
    give(std::move(secret));
  }
};

GtkWidget* wrappedLabel(const std::string& text, const char* cssClass) {
  GtkWidget* label = gtk_label_new(text.c_str());
  gtk_label_set_wrap(GTK_LABEL(label), TRUE);
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  if (cssClass) gtk_widget_add_css_class(label, cssClass);
  return label;
}

std::string trimmed(std::string text) {
  while (!text.empty() && (text.back() == ' ' || text.back() == '\n')) text.pop_back();
  return text;
}

void onCancel(GtkWidget*, gpointer prompt) { static_cast<Prompt*>(prompt)->finish(false); }
void onSubmit(GtkWidget*, gpointer prompt) { static_cast<Prompt*>(prompt)->finish(true); }
gboolean onWindowClose(GtkWindow*, gpointer prompt) {
  static_cast<Prompt*>(prompt)->finish(false);
  return TRUE;
}

}  // namespace

void GtkPasswordPrompt::show(Request request, Answer answer) {
  auto* prompt = new Prompt{};
  prompt->answer = std::move(answer);
  PasswordDialog& d = prompt->dialog;

  d.window = newWindowOverParent("Authentication required", 360, true);

  GtkWidget* grid = gtk_grid_new();
  gtk_grid_set_row_spacing(GTK_GRID(grid), 10);
  setDialogMargins(grid);

  std::string warning = request.failedAttempts > 0 ? "Wrong password. Try again." : "";
  if (!request.notice.empty()) warning += (warning.empty() ? "" : "\n") + request.notice;
  d.warning = wrappedLabel(warning, "error");
  gtk_widget_set_visible(d.warning, !warning.empty());

  d.entry = request.echo ? gtk_entry_new() : gtk_password_entry_new();
  if (!request.echo) gtk_password_entry_set_show_peek_icon(GTK_PASSWORD_ENTRY(d.entry), TRUE);
  gtk_widget_set_hexpand(d.entry, TRUE);

  const std::string cancelTitle = request.cancelTitle.empty() ? "Cancel" : request.cancelTitle;
  d.cancelButton = gtk_button_new_with_label(cancelTitle.c_str());
  d.okButton = gtk_button_new_with_label("OK");
  gtk_widget_add_css_class(d.okButton, "suggested-action");
  GtkWidget* buttons = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  gtk_widget_set_halign(buttons, GTK_ALIGN_END);
  gtk_box_append(GTK_BOX(buttons), d.cancelButton);
  gtk_box_append(GTK_BOX(buttons), d.okButton);

  int row = 0;
  for (GtkWidget* widget : {wrappedLabel(request.reason, "title-4"), d.warning,
                            wrappedLabel(trimmed(request.prompt), nullptr), d.entry, buttons}) {
    gtk_grid_attach(GTK_GRID(grid), widget, 0, row++, 1, 1);
  }
  gtk_window_set_child(d.window, grid);

  g_signal_connect(d.cancelButton, "clicked", G_CALLBACK(onCancel), prompt);
  g_signal_connect(d.okButton, "clicked", G_CALLBACK(onSubmit), prompt);
  g_signal_connect(d.entry, "activate", G_CALLBACK(onSubmit), prompt);
  g_signal_connect(d.window, "close-request", G_CALLBACK(onWindowClose), prompt);
  // The window owns the prompt; a window destroyed from elsewhere cancels.
  g_object_set_data_full(G_OBJECT(d.window), "vantu-password-prompt", prompt, [](gpointer data) {
    auto* gone = static_cast<Prompt*>(data);
    if (current() == gone) current() = nullptr;
    if (auto give = std::exchange(gone->answer, nullptr)) give(std::nullopt);
    delete gone;
  });
  current() = prompt;
  gtk_window_present(d.window);
  gtk_widget_grab_focus(d.entry);
}

std::optional<PasswordDialog> shownPasswordDialog() {
  if (!current()) return std::nullopt;
  return current()->dialog;
}

}  // namespace vantu::gtk
