#include "platforms/gtk/gtk_dialogs.h"

#include <chrono>
#include <filesystem>
#include <map>
#include <string>

#include "platforms/gtk/container_window.h"
#include "platforms/gtk/gtk_dialog_parts.h"
#include "platforms/gtk/gtk_pickers.h"
#include "platforms/linux/gobject_ptr.h"
#include "vantu/platform/activity_view_controller.h"
#include "vantu/platform/alert_controller.h"
#include "vantu/platform/document_picker_controller.h"
#include "vantu/platform/image_picker_controller.h"
#include "vantu/platform/platform.h"

namespace vantu::gtk {
namespace {

struct Shown {
  GtkWindow* window;
  std::vector<GtkWidget*> buttons;
  std::shared_ptr<void> attached;
};

std::map<const ViewController*, Shown>& shownDialogs() {
  static std::map<const ViewController*, Shown> dialogs;
  return dialogs;
}

PickerScript& pickerScript() {
  static PickerScript script;
  return script;
}

GtkWidget* label(const std::string& text, const char* cssClass) {
  GtkWidget* widget = gtk_label_new(text.c_str());
  gtk_label_set_wrap(GTK_LABEL(widget), TRUE);
  gtk_label_set_selectable(GTK_LABEL(widget), TRUE);
  if (cssClass) gtk_widget_add_css_class(widget, cssClass);
  return widget;
}

}  // namespace

GtkWindow* parentWindow() {
  if (!hasPlatform()) return nullptr;
  const auto& application = platform().application;
  auto window = application ? std::dynamic_pointer_cast<ContainerWindow>(application->keyWindow()) : nullptr;
  return window ? window->gtkWindow() : nullptr;
}

using Callback = std::function<void()>;
GtkWidget* button(const std::string& title, Callback onClick) {
  GtkWidget* widget = gtk_button_new_with_label(title.c_str());
  g_signal_connect_data(
      widget, "clicked", G_CALLBACK(+[](GtkButton*, gpointer data) { (*static_cast<Callback*>(data))(); }),
      new Callback(std::move(onClick)), [](gpointer data, GClosure*) { delete static_cast<Callback*>(data); },
      GConnectFlags{});
  return widget;
}

GtkWindow* newWindowOverParent(const std::string& title, int width, bool modal) {
  GtkWindow* window = GTK_WINDOW(gtk_window_new());
  gtk_window_set_title(window, title.c_str());
  gtk_window_set_modal(window, modal);
  gtk_window_set_default_size(window, width, -1);
  if (GtkWindow* parent = parentWindow()) gtk_window_set_transient_for(window, parent);
  return window;
}

void setDialogMargins(GtkWidget* widget) {
  for (auto margin : {gtk_widget_set_margin_top, gtk_widget_set_margin_bottom, gtk_widget_set_margin_start,
                      gtk_widget_set_margin_end}) {
    margin(widget, 18);
  }
}

GtkWindow* newDialogWindow(const std::string& title, GtkWidget*& content, GtkWidget*& buttonRow) {
  GtkWindow* window = newWindowOverParent(title, 320, true);
  content = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
  setDialogMargins(content);
  buttonRow = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  gtk_widget_set_halign(buttonRow, GTK_ALIGN_END);
  gtk_window_set_child(window, content);
  return window;
}

void onCloseRequest(GtkWindow* window, Callback onClose) {
  g_signal_connect_data(
      window, "close-request", G_CALLBACK(+[](GtkWindow*, gpointer data) -> gboolean {
        (*static_cast<Callback*>(data))();
        return TRUE;
      }),
      new Callback(std::move(onClose)), [](gpointer data, GClosure*) { delete static_cast<Callback*>(data); },
      GConnectFlags{});
}

void recordDialog(const ViewController& presented, GtkWindow* window, std::vector<GtkWidget*> buttons,
                  std::shared_ptr<void> attached) {
  shownDialogs()[&presented] = Shown{window, std::move(buttons), std::move(attached)};
}

namespace {

void showAlert(const std::shared_ptr<AlertController>& alert) {
  GtkWidget* content = nullptr;
  GtkWidget* row = nullptr;
  GtkWindow* window = newDialogWindow(alert->title(), content, row);
  if (!alert->title().empty()) gtk_box_append(GTK_BOX(content), label(alert->title(), "title-4"));
  if (!alert->message().empty()) gtk_box_append(GTK_BOX(content), label(alert->message(), nullptr));
  Shown shown{window, {}};
  std::weak_ptr<AlertController> weak = alert;
  for (std::size_t i = 0; i < alert->actions().size(); ++i) {
    GtkWidget* b = button(alert->actions()[i].title(), [weak, i] {
      if (auto a = weak.lock()) a->tapAction(i);
    });
    if (alert->actions()[i].style() == AlertAction::Style::Destructive) gtk_widget_add_css_class(b, "destructive-action");
    gtk_box_append(GTK_BOX(row), b);
    shown.buttons.push_back(b);
  }
  gtk_box_append(GTK_BOX(content), row);
  // The library dismisses the alert; the window manager's close button
  // counts as the cancel button.
  onCloseRequest(window, [weak] {
    auto a = weak.lock();
    for (std::size_t i = 0; a && i < a->actions().size(); ++i) {
      if (a->actions()[i].style() == AlertAction::Style::Cancel) {
        a->tapAction(i);
        break;
      }
    }
  });
  shownDialogs()[alert.get()] = shown;
  gtk_window_present(window);
}

std::filesystem::path picturesFolder() {
  const char* pictures = g_get_user_special_dir(G_USER_DIRECTORY_PICTURES);
  return pictures ? pictures : g_get_home_dir();
}

std::string saveImage(const Image& image) {
  const int width = static_cast<int>(image.size.width);
  const int height = static_cast<int>(image.size.height);
  if (width <= 0 || height <= 0 || image.bytes.size() != static_cast<std::size_t>(width) * height * 4) {
    return "The image cannot be saved.";
  }
  linux_platform::GBytesPtr bytes(g_bytes_new(image.bytes.data(), image.bytes.size()));
  linux_platform::GObjectPtr<GdkTexture> texture(
      gdk_memory_texture_new(width, height, GDK_MEMORY_R8G8B8A8, bytes.get(), width * 4));
  const auto stamp = std::chrono::system_clock::now().time_since_epoch() / std::chrono::milliseconds(1);
  std::error_code ec;
  std::filesystem::create_directories(picturesFolder(), ec);
  const auto path = picturesFolder() / ("vantu-share-" + std::to_string(stamp) + ".png");
  const bool saved = gdk_texture_save_to_png(texture.get(), path.c_str());
  return saved ? "Saved to " + path.string() : "Could not write " + path.string();
}

void showShareSheet(const std::shared_ptr<ActivityViewController>& sheet) {
  GtkWidget* content = nullptr;
  GtkWidget* row = nullptr;
  GtkWindow* window = newDialogWindow("Share", content, row);
  GtkWidget* status = label("", nullptr);
  Shown shown{window, {}};
  for (const auto& item : sheet->activityItems()) {
    if (const auto* text = std::get_if<std::string>(&item)) {
      gtk_box_append(GTK_BOX(content), label(*text, nullptr));
      GtkWidget* copy = button("Copy text", [window, status, text = *text] {
        gdk_clipboard_set_text(gtk_widget_get_clipboard(GTK_WIDGET(window)), text.c_str());
        gtk_label_set_text(GTK_LABEL(status), "Copied to the clipboard.");
      });
      gtk_box_append(GTK_BOX(row), copy);
      shown.buttons.push_back(copy);
    } else {
      const auto& image = std::get<Image>(item);
      gtk_box_append(GTK_BOX(content),
                     label("Image, " + std::to_string(static_cast<int>(image.size.width)) + " x " +
                               std::to_string(static_cast<int>(image.size.height)),
                           nullptr));
      GtkWidget* save = button("Save image", [status, image] {
        gtk_label_set_text(GTK_LABEL(status), saveImage(image).c_str());
      });
      gtk_box_append(GTK_BOX(row), save);
      shown.buttons.push_back(save);
    }
  }
  std::weak_ptr<ActivityViewController> weak = sheet;
  GtkWidget* close = button("Close", [weak] {
    if (auto s = weak.lock()) s->dismiss(true);
  });
  gtk_box_append(GTK_BOX(row), close);
  shown.buttons.push_back(close);
  gtk_box_append(GTK_BOX(content), status);
  gtk_box_append(GTK_BOX(content), row);
  shownDialogs()[sheet.get()] = shown;
  gtk_window_present(window);
}

}  // namespace

void showDialog(const std::shared_ptr<ViewController>& presented) {
  if (auto alert = std::dynamic_pointer_cast<AlertController>(presented)) {
    showAlert(alert);
  } else if (auto sheet = std::dynamic_pointer_cast<ActivityViewController>(presented)) {
    showShareSheet(sheet);
  } else if (std::dynamic_pointer_cast<DocumentPickerController>(presented) ||
             std::dynamic_pointer_cast<ImagePickerController>(presented)) {
    if (!pickerScript() || !pickerScript()(presented)) showPicker(presented);
  }
}

void setPickerScript(PickerScript script) { pickerScript() = std::move(script); }

void closeDialog(const ViewController& presented) {
  auto it = shownDialogs().find(&presented);
  if (it == shownDialogs().end()) return;
  gtk_window_destroy(it->second.window);
  shownDialogs().erase(it);
}

GtkWindow* dialogWindow(const ViewController& presented) {
  auto it = shownDialogs().find(&presented);
  return it == shownDialogs().end() ? nullptr : it->second.window;
}

std::vector<GtkWidget*> dialogButtons(const ViewController& presented) {
  auto it = shownDialogs().find(&presented);
  return it == shownDialogs().end() ? std::vector<GtkWidget*>{} : it->second.buttons;
}

}  // namespace vantu::gtk
