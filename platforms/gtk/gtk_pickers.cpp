#include "platforms/gtk/gtk_pickers.h"

#include <map>
#include <string_view>

#include "platforms/gtk/container_application.h"
#include "platforms/gtk/gtk_dialog_parts.h"
#include "platforms/linux/gobject_ptr.h"
#include "vantu/core/diagnostics.h"
#include "vantu/core/file_url.h"
#include "vantu/core/image_decoder.h"
#include "vantu/platform/document_picker_controller.h"
#include "vantu/platform/image_picker_controller.h"
#include "vantu/platform/platform.h"

#ifdef VANTU_HAVE_CAMERA
#include "platforms/camera/camera_session.h"
#endif

namespace vantu::gtk {
namespace {

using linux_platform::GBytesPtr;
using linux_platform::GCharPtr;
using linux_platform::GObjectPtr;

// The queue that reads and decodes picked pictures, made on first use.
const std::shared_ptr<SerialQueue>& decodingQueue() {
  static std::shared_ptr<SerialQueue> queue = platform().dispatch->makeSerialQueue("com.vantu.gtk.PickedImageDecoding");
  return queue;
}

// A file chooser dialog over the key window. Closing it from the window
// manager answers GTK_RESPONSE_DELETE_EVENT and only hides it: the picker's
// dismissal destroys it.
GtkFileChooser* fileChooser(const char* title, GtkFileFilter* filter) {
  GtkWidget* dialog = gtk_file_chooser_dialog_new(title, parentWindow(), GTK_FILE_CHOOSER_ACTION_OPEN, "_Cancel",
                                                  GTK_RESPONSE_CANCEL, "_Open", GTK_RESPONSE_ACCEPT, nullptr);
  gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
  gtk_window_set_hide_on_close(GTK_WINDOW(dialog), TRUE);
  gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT);
  if (filter) gtk_file_chooser_set_filter(GTK_FILE_CHOOSER(dialog), filter);
  return GTK_FILE_CHOOSER(dialog);
}

using Response = std::function<void(GtkFileChooser*, bool accepted)>;
void onResponse(GtkFileChooser* chooser, Response response) {
  g_signal_connect_data(
      chooser, "response", G_CALLBACK(+[](GtkDialog* dialog, int id, gpointer data) {
        gtk_widget_set_visible(GTK_WIDGET(dialog), FALSE);
        (*static_cast<Response*>(data))(GTK_FILE_CHOOSER(dialog), id == GTK_RESPONSE_ACCEPT);
      }),
      new Response(std::move(response)), [](gpointer data, GClosure*) { delete static_cast<Response*>(data); },
      GConnectFlags{});
}

std::string localPath(GFile* file) {
  GCharPtr path(g_file_get_path(file));
  return path ? path.get() : "";
}

void showLibraryPicker(const std::shared_ptr<ImagePickerController>& picker) {
  GObjectPtr<GtkFileFilter> filter(gtk_file_filter_new());
  gtk_file_filter_set_name(filter.get(), "Pictures");
  gtk_file_filter_add_mime_type(filter.get(), "image/*");
  GtkFileChooser* chooser = fileChooser("Choose a picture", filter.get());
  if (const char* pictures = g_get_user_special_dir(G_USER_DIRECTORY_PICTURES)) {
    GObjectPtr<GFile> folder(g_file_new_for_path(pictures));
    gtk_file_chooser_set_current_folder(chooser, folder.get(), nullptr);
  }
  onResponse(chooser, [weak = std::weak_ptr<ImagePickerController>(picker)](GtkFileChooser* dialog, bool accepted) {
    GObjectPtr<GFile> file(accepted ? gtk_file_chooser_get_file(dialog) : nullptr);
    const std::string path = file ? localPath(file.get()) : "";
    if (path.empty()) {
      if (auto p = weak.lock()) p->cancel();
      return;
    }
    decodingQueue()->async([weak, path, main = platform().dispatch->main()] {
      ImagePickerMediaInfo info;
      if (auto image = decodeImageFile(path)) info[ImagePickerInfoKey::originalImage] = std::make_shared<const Image>(std::move(*image));
      const std::string url = fileUrlFromPath(path);
      info[ImagePickerInfoKey::imageURL] = url;
      info[ImagePickerInfoKey::phAsset] = url;
      main->async([weak, info = std::move(info)] {
        if (auto p = weak.lock()) p->finishPicking(info);
      });
    });
  });
  recordDialog(*picker, GTK_WINDOW(chooser), {});
  gtk_window_present(GTK_WINDOW(chooser));
}

// The MIME types a document type names; empty for a type that stands for
// any item (or one this table does not know, which then adds nothing).
struct TypeMapping {
  std::string_view type;
  std::vector<const char*> mimeTypes;
  bool anything = false;
};
const std::vector<TypeMapping>& typeMappings() {
  static const std::vector<TypeMapping> table = {
      {"public.item", {}, true},
      {"public.content", {}, true},
      {"public.data", {}, true},
      {"public.image", {"image/*"}},
      {"public.jpeg", {"image/jpeg"}},
      {"public.png", {"image/png"}},
      {"public.movie", {"video/*"}},
      {"public.video", {"video/*"}},
      {"public.audio", {"audio/*"}},
      {"public.text", {"text/*"}},
      {"public.plain-text", {"text/plain"}},
      {"com.adobe.pdf", {"application/pdf"}},
  };
  return table;
}

// The filter for `types`, or nullptr to show every file.
GObjectPtr<GtkFileFilter> documentFilter(const std::vector<std::string>& types) {
  std::vector<const char*> mimeTypes;
  for (const auto& type : types) {
    for (const auto& mapping : typeMappings()) {
      if (mapping.type != type) continue;
      if (mapping.anything) return nullptr;
      mimeTypes.insert(mimeTypes.end(), mapping.mimeTypes.begin(), mapping.mimeTypes.end());
    }
  }
  if (mimeTypes.empty()) return nullptr;
  GObjectPtr<GtkFileFilter> filter(gtk_file_filter_new());
  gtk_file_filter_set_name(filter.get(), "Documents");
  for (const char* mime : mimeTypes) gtk_file_filter_add_mime_type(filter.get(), mime);
  return filter;
}

void showDocumentPicker(const std::shared_ptr<DocumentPickerController>& picker) {
  GtkFileChooser* chooser = fileChooser(picker->allowsMultipleSelection() ? "Choose files" : "Choose a file",
                                        documentFilter(picker->documentTypes()).get());
  gtk_file_chooser_set_select_multiple(chooser, picker->allowsMultipleSelection());
  onResponse(chooser, [weak = std::weak_ptr<DocumentPickerController>(picker)](GtkFileChooser* dialog, bool accepted) {
    std::vector<std::string> urls;
    if (accepted) {
      GObjectPtr<GListModel> files(gtk_file_chooser_get_files(dialog));
      for (guint i = 0; i < g_list_model_get_n_items(files.get()); ++i) {
        GObjectPtr<GFile> file(G_FILE(g_list_model_get_item(files.get(), i)));
        if (auto path = localPath(file.get()); !path.empty()) urls.push_back(fileUrlFromPath(path));
      }
    }
    auto p = weak.lock();
    if (!p) return;
    if (urls.empty()) {
      p->cancel();
    } else {
      p->pickDocuments(urls);
    }
  });
  recordDialog(*picker, GTK_WINDOW(chooser), {});
  gtk_window_present(GTK_WINDOW(chooser));
}

#ifdef VANTU_HAVE_CAMERA
GObjectPtr<GdkTexture> textureOf(const std::shared_ptr<const Image>& image) {
  // The texture reads the image's pixels in place and holds the image.
  auto* holder = new std::shared_ptr<const Image>(image);
  GBytesPtr bytes(g_bytes_new_with_free_func(
      image->bytes.data(), image->bytes.size(),
      [](gpointer data) { delete static_cast<std::shared_ptr<const Image>*>(data); }, holder));
  const int width = static_cast<int>(image->size.width);
  return GObjectPtr<GdkTexture>(gdk_memory_texture_new(width, static_cast<int>(image->size.height),
                                                       GDK_MEMORY_R8G8B8A8, bytes.get(), static_cast<gsize>(width) * 4));
}

void showCameraPicker(const std::shared_ptr<ImagePickerController>& picker) {
  auto application = std::dynamic_pointer_cast<ContainerApplication>(platform().application);
  std::string error = "this application has no camera";
  GstElement* source = application ? application->createCameraSource(picker->cameraDevice(), error) : nullptr;

  GtkWidget* content = nullptr;
  GtkWidget* row = nullptr;
  GtkWindow* window = newDialogWindow("Take a photo", content, row);
  GtkWidget* preview = gtk_picture_new();
  gtk_widget_set_size_request(preview, 480, 360);
  gtk_picture_set_can_shrink(GTK_PICTURE(preview), TRUE);
  GtkWidget* status = gtk_label_new(source ? "Starting the camera..." : error.c_str());
  gtk_label_set_wrap(GTK_LABEL(status), TRUE);
  std::weak_ptr<ImagePickerController> weak = picker;
  auto session = std::make_shared<std::shared_ptr<camera::CameraSession>>();
  GtkWidget* take = button("Take photo", [weak, session] {
    auto frame = *session ? (*session)->latestFrame() : nullptr;
    auto p = weak.lock();
    if (!frame || !p) return;
    (*session)->stop();
    p->finishPicking({{ImagePickerInfoKey::originalImage, frame}});
  });
  gtk_widget_set_sensitive(take, FALSE);
  GtkWidget* cancel = button("Cancel", [weak] {
    if (auto p = weak.lock()) p->cancel();
  });
  onCloseRequest(window, [weak] {
    if (auto p = weak.lock()) p->cancel();
  });
  gtk_box_append(GTK_BOX(row), cancel);
  gtk_box_append(GTK_BOX(row), take);
  gtk_box_append(GTK_BOX(content), preview);
  gtk_box_append(GTK_BOX(content), status);
  gtk_box_append(GTK_BOX(content), row);
  if (source) {
    *session = std::make_shared<camera::CameraSession>(
        platform().dispatch, source,
        [preview, status, take](const std::shared_ptr<const Image>& frame) {
          auto texture = textureOf(frame);
          gtk_picture_set_paintable(GTK_PICTURE(preview), GDK_PAINTABLE(texture.get()));
          gtk_widget_set_visible(status, FALSE);
          gtk_widget_set_sensitive(take, TRUE);
        },
        [status](const std::string& message) {
          printDiagnostic("vantu-h5: camera: " + message);
          gtk_label_set_text(GTK_LABEL(status), message.c_str());
          gtk_widget_set_visible(status, TRUE);
        });
  } else {
    printDiagnostic("vantu-h5: camera: " + error);
  }
  // The session stops when the dialog closes; its handlers only touch the
  // dialog's widgets while it runs.
  recordDialog(*picker, window, {cancel, take}, session);
  gtk_window_present(window);
}
#endif

}  // namespace

void showPicker(const std::shared_ptr<ViewController>& presented) {
  if (auto documents = std::dynamic_pointer_cast<DocumentPickerController>(presented)) {
    showDocumentPicker(documents);
    return;
  }
  auto picker = std::dynamic_pointer_cast<ImagePickerController>(presented);
  if (!picker) return;
  if (picker->sourceType() != ImagePickerSource::camera) {
    showLibraryPicker(picker);
    return;
  }
#ifdef VANTU_HAVE_CAMERA
  showCameraPicker(picker);
#else
  // Without camera support the camera is never reported available, so only
  // a host that skips that check gets here: the picker is cancelled.
  printDiagnostic("vantu-h5: this container was built without camera support; the picker was cancelled");
  platform().dispatch->main()->async([weak = std::weak_ptr<ImagePickerController>(picker)] {
    if (auto p = weak.lock()) p->cancel();
  });
#endif
}

}  // namespace vantu::gtk
