#include "login_dialog.h"

namespace host_app {

void LoginDialog::ask(GtkWindow* parent, Done done) {
  waiting_.push_back(std::move(done));
  if (window_) return;
  window_ = GTK_WINDOW(gtk_window_new());
  gtk_window_set_title(window_, "Sign in");
  gtk_window_set_modal(window_, TRUE);
  if (parent) gtk_window_set_transient_for(window_, parent);
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
  gtk_widget_set_margin_start(box, 16);
  gtk_widget_set_margin_end(box, 16);
  gtk_widget_set_margin_top(box, 16);
  gtk_widget_set_margin_bottom(box, 16);
  gtk_box_append(GTK_BOX(box), gtk_label_new("A mini-app asks you to sign in to the host app."));
  entry_ = gtk_entry_new();
  gtk_entry_set_placeholder_text(GTK_ENTRY(entry_), "User name");
  gtk_box_append(GTK_BOX(box), entry_);
  GtkWidget* buttons = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8);
  GtkWidget* cancel = gtk_button_new_with_label("Cancel");
  signIn_ = gtk_button_new_with_label("Sign in");
  gtk_box_append(GTK_BOX(buttons), cancel);
  gtk_box_append(GTK_BOX(buttons), signIn_);
  gtk_box_append(GTK_BOX(box), buttons);
  gtk_window_set_child(window_, box);
  g_signal_connect(signIn_, "clicked", G_CALLBACK(+[](GtkButton*, gpointer self) {
                     auto* dialog = static_cast<LoginDialog*>(self);
                     std::string user = gtk_editable_get_text(GTK_EDITABLE(dialog->entry_));
                     if (!user.empty()) dialog->finish(user);
                   }),
                   this);
  g_signal_connect(cancel, "clicked",
                   G_CALLBACK(+[](GtkButton*, gpointer self) { static_cast<LoginDialog*>(self)->finish(std::nullopt); }),
                   this);
  g_signal_connect(window_, "close-request", G_CALLBACK(+[](GtkWindow*, gpointer self) -> gboolean {
                     static_cast<LoginDialog*>(self)->finish(std::nullopt);
                     return TRUE;
                   }),
                   this);
  gtk_window_present(window_);
}

void LoginDialog::signInAs(const std::string& user) {
  if (!window_) return;
  gtk_editable_set_text(GTK_EDITABLE(entry_), user.c_str());
  g_signal_emit_by_name(signIn_, "clicked");
}

void LoginDialog::finish(std::optional<std::string> user) {
  gtk_window_destroy(window_);
  window_ = nullptr;
  auto waiting = std::move(waiting_);
  waiting_.clear();
  for (auto& done : waiting) done(user);
}

}  // namespace host_app
