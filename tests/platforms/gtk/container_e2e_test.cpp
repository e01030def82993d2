// Real pages in the WebKitGTK container calling real bridges through the
// injected SDK. Runs under a display (ctest wraps it in xvfb-run without one).
// Each page reports what it saw by setting its title to "done:<json>".

#include <gtest/gtest.h>
#include <httplib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "platforms/gtk/container_application.h"
#include "platforms/gtk/container_stack.h"
#include "platforms/gtk/directory_server.h"
#include "platforms/gtk/glib_main_context.h"
#include "platforms/gtk/gtk_consent.h"
#include "platforms/gtk/gtk_dialogs.h"
#include "platforms/gtk/gtk_password_prompt.h"
#include "platforms/gtk/gtk_platform.h"
#include "vantu/container/h5_provider_error.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/platform/alert_controller.h"
#include "vantu/platform/document_picker_controller.h"
#include "vantu/platform/image_picker_controller.h"
#include "vantu/value/base64.h"
#include "vantu/value/json.h"

namespace vantu::gtk {
namespace {

namespace fs = std::filesystem;
constexpr auto kWait = std::chrono::seconds(30);

class ContainerE2E : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    root() = fs::temp_directory_path() / ("vantu-e2e-" + std::to_string(::getpid()));
    fs::create_directories(root() / "pages");
    linux_platform::LinuxPlatformOptions options;
    options.dataDirectory = root() / "data";
    // Owner authentication against a stack that wants the password "right".
    fs::create_directories(root() / "pam");
    std::ofstream(root() / "pam" / "check.sh") << "#!/bin/sh\npw=$(tr -d '\\000'); [ \"$pw\" = right ]\n";
    fs::permissions(root() / "pam" / "check.sh", fs::perms::owner_all);
    std::ofstream(root() / "pam" / "e2e") << "auth [success=1 default=ignore] pam_exec.so expose_authtok quiet "
                                          << (root() / "pam" / "check.sh").string()
                                          << "\nauth requisite pam_deny.so\nauth required pam_permit.so\n";
    options.ownerAuthentication = {"e2e", root() / "pam", 3};
    auto bundle = makeGtkPlatform(options);
    ASSERT_TRUE(bundle) << "no display";
    installPlatform(bundle->platform);
    permissions() = bundle->permissions;
    server() = std::make_unique<DirectoryServer>(root() / "pages");
  }
  static void TearDownTestSuite() {
    server().reset();
    permissions().reset();
    fs::remove_all(root());
  }

  void SetUp() override {
    ASSERT_TRUE(server());
    Laizaxlu::shared().setupWhiteListWebDomains({"127.0.0.1"});
    ContainerOptions options;
    options.uniqueAppId = "e2e.mini";
    options.webView.registry = registry = std::make_shared<BridgeRegistry>();
    registerAllBridges(*options.webView.registry);
    options.webView.observer.call = [this](const page::Message& m) { calls.push_back(m.bridge); };
    options.webView.observer.answer = [this](std::int64_t, std::string_view bridge, const Value& answer) {
      answers.push_back(std::string(bridge) + " " + json::write(answer));
    };
    stack = std::make_shared<ContainerStack>(options);
    Laizaxlu::shared().setupWith(std::make_shared<H5DataProviders>(stack, nullptr, nullptr));
  }
  void TearDown() override {
    Laizaxlu::shared().setupWith(nullptr);
    stack.reset();
  }

  static fs::path& root() {
    static fs::path path;
    return path;
  }
  static std::unique_ptr<DirectoryServer>& server() {
    static std::unique_ptr<DirectoryServer> s;
    return s;
  }
  static std::shared_ptr<linux_platform::PermissionStore>& permissions() {
    static std::shared_ptr<linux_platform::PermissionStore> store;
    return store;
  }
  /// Waits until the permission file, read afresh, holds `state`.
  static bool persisted(ProtectedResource resource, AuthorizationState state) {
    return runMainContextUntil([&] {
      return linux_platform::PermissionStore::open(root() / "data", nullptr, nullptr)->state(resource) == state;
    }, kWait);
  }
  static std::string url(const std::string& page) { return server()->origin() + "/" + page; }

  /// Writes a page whose body runs `script` (the SDK is already there).
  static void writePage(const std::string& name, const std::string& script, const std::string& body = "") {
    std::ofstream(root() / "pages" / name) << "<!DOCTYPE html><html><head><title>loading</title></head><body>" << body
                                           << "<script>\n" << script << "\n</script></body></html>";
  }

  /// Waits until the screen's title starts with `prefix`; returns the rest.
  std::string waitForTitle(const std::shared_ptr<ContainerScreen>& screen, const std::string& prefix = "done:") {
    std::string title;
    runMainContextUntil([&] { return (title = screen->webView()->title()).rfind(prefix, 0) == 0; }, kWait);
    EXPECT_EQ(title.rfind(prefix, 0), 0u) << "title: " << title;
    return title.rfind(prefix, 0) == 0 ? title.substr(prefix.size()) : "";
  }

  /// Waits until `screen` presents a two-button alert and presses the
  /// button at `index`, which must read `label`.
  static void pressAlertButton(const std::shared_ptr<ContainerScreen>& screen, std::size_t index, const char* label) {
    std::shared_ptr<AlertController> alert;
    ASSERT_TRUE(runMainContextUntil([&] {
      return (alert = std::dynamic_pointer_cast<AlertController>(screen->presentedViewController())) != nullptr;
    }, kWait));
    auto buttons = dialogButtons(*alert);
    ASSERT_EQ(buttons.size(), 2u);
    EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(buttons[index])), label);
    g_signal_emit_by_name(buttons[index], "clicked");
  }

  static Value parse(const std::string& text) {
    auto parsed = json::parse(text);
    EXPECT_TRUE(parsed.ok()) << text;
    return parsed.ok() ? parsed.value() : Value();
  }

  std::shared_ptr<BridgeRegistry> registry;
  std::shared_ptr<ContainerStack> stack;
  std::vector<std::string> calls;
  std::vector<std::string> answers;
};

// A page helper: calls bridges one after the other, then reports every
// first answer in the title.
constexpr const char* kSequence = R"js(
function sequence(steps) {
  var results = [];
  (function next(i) {
    if (i === steps.length) { document.title = "done:" + JSON.stringify(results); return; }
    vantu.call(steps[i][0], steps[i][1], function (answer) { results.push(answer); next(i + 1); });
  })(0);
}
)js";

TEST_F(ContainerE2E, StorageDeviceInfoAndAppearanceBridgesAnswerThePage) {
  writePage("basics.html", std::string(kSequence) + R"js(sequence([
    ["vantuSaveData", {data: {theme: "dark", n: 3}}],
    ["vantuGetData", {keys: ["theme", "n", "missing"]}],
    ["vantuDeviceManufacturer", {}],
    ["noSuchBridge", {}],
    ["vantuChangeStatusBarColor", {color: "#ff8800"}],
    ["vantuShowTitleBar", {value: false}]
  ]);)js");
  auto screen = stack->open(url("basics.html"));
  auto results = parse(waitForTitle(screen));
  ASSERT_TRUE(results.isArray());
  const auto& r = *results.asArray();
  ASSERT_EQ(r.size(), 6u);
  EXPECT_EQ(json::write(r[0]), R"({"data":{}})");
  EXPECT_EQ(json::write(r[1]), R"({"data":{"theme":"dark","n":3,"missing":""}})");
  EXPECT_TRUE(r[2].asDict() && r[2].asDict()->getString("data")) << json::write(r[2]);
  EXPECT_EQ(json::write(r[3]), R"({"error":2,"message":"Unknown bridge: noSuchBridge"})");
  EXPECT_TRUE(stack->window()->statusStripVisible());
  EXPECT_FALSE(gtk_widget_get_visible(stack->navigation()->bar()->widget()));
  EXPECT_EQ(calls.size(), 6u);
}

TEST_F(ContainerE2E, HttpAndDownloadBridgesReachALoopbackServer) {
  std::ofstream(root() / "pages" / "sample.json") << R"({"greeting": "xin chào"})";
  writePage("network.html", std::string(kSequence) + R"js(
    var base = location.origin + "/";
    sequence([
      ["httpRequest", {url: base + "sample.json", method: "GET"}],
      ["httpRequest", {url: base + "absent.json", method: "GET"}],
      ["httpRequest", {url: base + "sample.json"}],
      ["vantuDownloadFile", {fileName: "e2e-sample.json", fileDownloadUrl: base + "sample.json"}],
      ["vantuGetFilePath", {fileName: "e2e-sample.json"}],
      ["vantuRemoveFile", {fileName: "e2e-sample.json"}]
    ]);)js");
  auto screen = stack->open(url("network.html"));
  auto results = parse(waitForTitle(screen));
  ASSERT_TRUE(results.isArray());
  const auto& r = *results.asArray();
  ASSERT_EQ(r.size(), 6u);
  const Dict* ok = r[0].asDict();
  ASSERT_TRUE(ok) << json::write(r[0]);
  EXPECT_EQ(ok->getInt("status"), 200);
  EXPECT_EQ(ok->getString("data"), R"({"greeting": "xin chào"})");
  EXPECT_TRUE(ok->getString("headersStr") && ok->getDict("headers"));
  EXPECT_EQ(r[1].asDict() ? r[1].asDict()->getInt("status") : std::nullopt, 404) << json::write(r[1]);
  EXPECT_EQ(json::write(r[2]), R"({"invalid method":2})");
  auto download = r[3].asDict() ? r[3].asDict()->getDict("data") : std::nullopt;
  ASSERT_TRUE(download) << json::write(r[3]);
  EXPECT_EQ(download->getBool("success"), true) << json::write(r[3]);
  auto path = download->getString("filePath").value_or("");
  EXPECT_EQ(fs::path(path).filename(), "e2e-sample.json");
  EXPECT_EQ(fs::path(path).parent_path().filename(), "H5DOWNLOADS");
  EXPECT_EQ(json::write(r[4]), R"({"data":{"filePath":")" + path + R"(","success":true}})");
  EXPECT_TRUE(r[5].asDict() && !r[5].asDict()->find("error")) << json::write(r[5]);
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(ContainerE2E, MalformedMessagesGetAnErrorAnswerForTheirId) {
  writePage("malformed.html", R"js(
    var taken = !document.dispatchEvent(new CustomEvent("vantu:post", {detail: '{"id": 900, "bridge": 5}', cancelable: true}));
    document.dispatchEvent(new CustomEvent("vantu:post", {detail: 'not json', cancelable: true}));
    vantu.call("vantuDeviceManufacturer", {}, function () { document.title = "done:" + taken; });)js");
  auto screen = stack->open(url("malformed.html"));
  EXPECT_EQ(waitForTitle(screen), "true");
  ASSERT_GE(answers.size(), 1u);
  EXPECT_EQ(answers[0], R"( {"error":2,"message":"Malformed bridge message: \"bridge\" must be a non-empty string"})");
}

TEST_F(ContainerE2E, FramesInsideThePageCannotReachTheBridges) {
  writePage("frame.html", R"js(
    var seen = {
      sdk: typeof window.vantu,
      handlers: typeof (window.webkit && window.webkit.messageHandlers),
      taken: !document.dispatchEvent(new CustomEvent("vantu:post",
          {detail: JSON.stringify({id: 1, bridge: "vantuDeviceManufacturer", data: {}}), cancelable: true}))
    };
    parent.postMessage(JSON.stringify(seen), "*");)js");
  writePage("parent.html", R"js(
    window.addEventListener("message", function (event) {
      // Give a stray call time to arrive before reporting.
      setTimeout(function () { document.title = "done:" + event.data; }, 300);
    });)js",
            R"(<iframe src="frame.html"></iframe>)");
  auto screen = stack->open(url("parent.html"));
  auto seen = parse(waitForTitle(screen));
  ASSERT_TRUE(seen.isDict());
  EXPECT_EQ(json::write(seen), R"({"sdk":"undefined","handlers":"undefined","taken":false})");
  EXPECT_TRUE(calls.empty());
}

TEST_F(ContainerE2E, PushWindowOpensTheNextPageOnTheStack) {
  writePage("second.html", std::string(kSequence) + R"js(sequence([["vantuGetData", {keys: ["visited"]}]]);)js");
  writePage("first.html", R"js(
    vantu.call("vantuSaveData", {data: {visited: "yes"}}, function () {
      vantu.call("pushWindow", {url: location.origin + "/second.html", params: {}}, function (a) {
        document.title = "fail:" + JSON.stringify(a);
      });
    });)js");
  auto first = stack->open(url("first.html"));
  ASSERT_TRUE(runMainContextUntil([&] { return stack->navigation()->viewControllers().size() == 2; }, kWait));
  auto second = stack->topScreen();
  ASSERT_NE(second, first);
  EXPECT_EQ(waitForTitle(second), R"([{"data":{"visited":"yes"}}])");
  stack->navigation()->pop();
  EXPECT_EQ(stack->topScreen(), first);
}

TEST_F(ContainerE2E, AnAlertButtonPressedInTheDialogAnswersThePage) {
  writePage("alert.html", R"js(
    vantu.call("showAlert", {title: "Pay?", message: "Pay 20 000 VND", type: "custom", buttons: ["Yes", "No"]},
               function (a) { document.title = "done:" + JSON.stringify(a); });)js");
  auto screen = stack->open(url("alert.html"));
  pressAlertButton(screen, 1, "No");
  EXPECT_EQ(waitForTitle(screen), R"({"data":{"success":true}})");
  EXPECT_EQ(screen->presentedViewController(), nullptr);
}

// Photo and camera access granted, as the picker bridges ask for it.
class GrantedAuthorization : public Authorization {
 protected:
  AuthorizationState doState(ProtectedResource) const override { return AuthorizationState::authorized; }
  void doRequest(ProtectedResource, Completion completion) override { completion(AuthorizationState::authorized); }
};

class PickerE2E : public ContainerE2E {
 protected:
  void SetUp() override {
    ContainerE2E::SetUp();
    platform().authorization = std::make_shared<GrantedAuthorization>();
    fs::create_directories(root() / "picks");
  }
  void TearDown() override {
    platform().authorization = nullptr;
    ContainerE2E::TearDown();
  }

  /// Waits for `screen` to present a T and for its dialog to show.
  template <class T>
  std::shared_ptr<T> waitForPicker(const std::shared_ptr<ContainerScreen>& screen) {
    std::shared_ptr<T> picker;
    runMainContextUntil([&] {
      picker = std::dynamic_pointer_cast<T>(screen->presentedViewController());
      return picker && dialogWindow(*picker);
    }, kWait);
    EXPECT_TRUE(picker && dialogWindow(*picker)) << "no picker dialog";
    return picker && dialogWindow(*picker) ? picker : nullptr;
  }

  /// Selects the files called `names` in the chooser's folder list, as a
  /// user's clicks do, then presses "Open".
  static void chooseFiles(GtkWindow* dialog, const std::vector<std::string>& names) {
    GFile* folder = g_file_new_for_path((root() / "picks").c_str());
    gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog), folder, nullptr);
    g_object_unref(folder);
    std::size_t selected = 0;
    runMainContextUntil([&] {
      // GTK 4.8's chooser lists the folder in a tree view; one of its
      // model's columns holds each row's file.
      auto* view = findTreeView(GTK_WIDGET(dialog));
      GtkTreeModel* model = view ? gtk_tree_view_get_model(view) : nullptr;
      int fileColumn = -1;
      for (int c = 0; model && c < gtk_tree_model_get_n_columns(model); ++c) {
        if (gtk_tree_model_get_column_type(model, c) == G_TYPE_FILE) fileColumn = c;
      }
      if (fileColumn < 0) return false;
      GtkTreeIter row;
      for (bool more = model && gtk_tree_model_get_iter_first(model, &row); more; more = gtk_tree_model_iter_next(model, &row)) {
        GFile* file = nullptr;
        gtk_tree_model_get(model, &row, fileColumn, &file, -1);
        char* name = file ? g_file_get_basename(file) : nullptr;
        if (name && std::find(names.begin(), names.end(), name) != names.end()) {
          gtk_tree_selection_select_iter(gtk_tree_view_get_selection(view), &row);
        }
        g_free(name);
        if (file) g_object_unref(file);
      }
      GListModel* files = gtk_file_chooser_get_files(GTK_FILE_CHOOSER(dialog));
      selected = g_list_model_get_n_items(files);
      g_object_unref(files);
      return selected == names.size();
    }, kWait);
    ASSERT_EQ(selected, names.size()) << "the files did not show in the chooser";
    gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT);
  }

  static GtkTreeView* findTreeView(GtkWidget* widget) {
    if (GTK_IS_TREE_VIEW(widget)) return GTK_TREE_VIEW(widget);
    for (GtkWidget* child = gtk_widget_get_first_child(widget); child; child = gtk_widget_get_next_sibling(child)) {
      if (auto* view = findTreeView(child)) return view;
    }
    return nullptr;
  }

  /// Writes a `width` x `height` PNG into the picks folder; returns its bytes.
  static std::string writePicture(const std::string& name, int width, int height) {
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * height * 4, 0x80);
    GBytes* bytes = g_bytes_new(pixels.data(), pixels.size());
    GdkTexture* texture = gdk_memory_texture_new(width, height, GDK_MEMORY_R8G8B8A8, bytes, width * 4);
    g_bytes_unref(bytes);
    EXPECT_TRUE(gdk_texture_save_to_png(texture, (root() / "picks" / name).c_str()));
    g_object_unref(texture);
    std::ifstream in(root() / "picks" / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }
};

TEST_F(PickerE2E, TheGalleryChooserAnswersThePickedPictureThenACancel) {
  const std::string png = writePicture("shot.png", 7, 5);
  writePage("gallery.html", std::string(kSequence) + R"js(sequence([["vantuOpenGallery", {}], ["vantuOpenGallery", {}]]);)js");
  auto screen = stack->open(url("gallery.html"));
  auto picker = waitForPicker<ImagePickerController>(screen);
  ASSERT_TRUE(picker);
  EXPECT_TRUE(GTK_IS_FILE_CHOOSER(dialogWindow(*picker)));
  chooseFiles(dialogWindow(*picker), {"shot.png"});
  // The second call's picker: cancelled from its own button.
  runMainContextUntil([&] {
    auto next = std::dynamic_pointer_cast<ImagePickerController>(screen->presentedViewController());
    return next && next != picker && dialogWindow(*next);
  }, kWait);
  auto second = screen->presentedViewController();
  ASSERT_TRUE(second && second != picker && dialogWindow(*second));
  gtk_dialog_response(GTK_DIALOG(dialogWindow(*second)), GTK_RESPONSE_CANCEL);

  const Value parsed = parse(waitForTitle(screen));
  ASSERT_TRUE(parsed.asArray() && parsed.asArray()->size() == 2u) << json::write(parsed);
  const Array& answers = *parsed.asArray();
  ASSERT_TRUE(answers[0].asDict() && answers[0].asDict()->find("data")) << json::write(answers[0]);
  const Dict& data = *answers[0].asDict()->find("data")->asDict();
  EXPECT_EQ(*data.find("base64")->asString(), base64::encode(std::vector<std::uint8_t>(png.begin(), png.end())));
  const Dict& meta = *data.find("meta")->asDict();
  EXPECT_EQ(*meta.find("imageName")->asString(), "shot.png");
  EXPECT_EQ(*meta.find("imageType")->asString(), "png");
  EXPECT_EQ(json::write(answers[1]), R"({"error":2,"message":"User cancelled the operation!"})");
  EXPECT_EQ(screen->presentedViewController(), nullptr);
  EXPECT_EQ(dialogWindow(*picker), nullptr);
}

TEST_F(PickerE2E, TheDocumentChooserAnswersEveryFileChosen) {
  std::ofstream(root() / "picks" / "a.txt") << "first";
  std::ofstream(root() / "picks" / "b.txt") << "second!";
  writePage("files.html", std::string(kSequence) + R"js(sequence([
    ["vantuPickFile", {extensionsAllowed: ["txt"], maxLengthPerFile: 1000, maxNumberOfFiles: 2}]]);)js");
  auto screen = stack->open(url("files.html"));
  auto picker = waitForPicker<DocumentPickerController>(screen);
  ASSERT_TRUE(picker);
  EXPECT_TRUE(gtk_file_chooser_get_select_multiple(GTK_FILE_CHOOSER(dialogWindow(*picker))));
  chooseFiles(dialogWindow(*picker), {"a.txt", "b.txt"});
  const std::string answer = waitForTitle(screen);
  for (const char* expected : {R"("fileName":"a.txt")", R"("fileName":"b.txt")", "\"Zmlyc3Q=\"", "\"c2Vjb25kIQ==\""}) {
    EXPECT_NE(answer.find(expected), std::string::npos) << expected << " missing from " << answer;
  }
  EXPECT_EQ(screen->presentedViewController(), nullptr);
}

#ifdef VANTU_HAVE_CAMERA
TEST_F(PickerE2E, TheCameraPreviewTakesTheFrameOnScreen) {
  auto application = std::dynamic_pointer_cast<ContainerApplication>(platform().application);
  ASSERT_TRUE(application);
  application->setCameraSource("videotestsrc ! capsfilter caps=video/x-raw,width=40,height=24");
  // The page shows the photo it gets and reports its pixel size.
  writePage("camera.html", R"js(
    vantu.call("vantuCaptureImageFromCamera", {}, function (a) {
      if (!a.data) { document.title = "done:" + JSON.stringify(a); return; }
      var img = new Image();
      img.onload = function () { document.title = "done:" + [a.data.meta.imageType, img.naturalWidth, img.naturalHeight]; };
      img.onerror = function () { document.title = "done:undecodable"; };
      img.src = "data:image/jpeg;base64," + a.data.base64;
    });)js");
  auto screen = stack->open(url("camera.html"));
  auto picker = waitForPicker<ImagePickerController>(screen);
  application->setCameraSource("");
  ASSERT_TRUE(picker);
  auto buttons = dialogButtons(*picker);
  ASSERT_EQ(buttons.size(), 2u);  // "Cancel", "Take photo"
  EXPECT_TRUE(runMainContextUntil([&] { return gtk_widget_get_sensitive(buttons[1]); }, kWait)) << "no frame shown";
  g_signal_emit_by_name(buttons[1], "clicked");
  EXPECT_EQ(waitForTitle(screen), "jpg,40,24");
  EXPECT_EQ(screen->presentedViewController(), nullptr);
}
#endif

TEST_F(ContainerE2E, TheShareDialogCopiesTheTextAndCloses) {
  writePage("share.html", R"js(
    vantu.call("vantuShareText", {text: "look at this"}, function (a) { document.title = "done:" + JSON.stringify(a); });)js");
  auto screen = stack->open(url("share.html"));
  EXPECT_EQ(waitForTitle(screen), R"({"data":{"success":true}})");
  auto sheet = screen->presentedViewController();
  ASSERT_NE(sheet, nullptr);
  auto buttons = dialogButtons(*sheet);
  ASSERT_EQ(buttons.size(), 2u);  // "Copy text", "Close"
  g_signal_emit_by_name(buttons[0], "clicked");
  std::string copied;
  gdk_clipboard_read_text_async(
      gtk_widget_get_clipboard(buttons[0]), nullptr,
      [](GObject* clipboard, GAsyncResult* result, gpointer out) {
        char* text = gdk_clipboard_read_text_finish(GDK_CLIPBOARD(clipboard), result, nullptr);
        *static_cast<std::string*>(out) = text ? text : "(none)";
        g_free(text);
      },
      &copied);
  ASSERT_TRUE(runMainContextUntil([&] { return !copied.empty(); }, kWait));
  EXPECT_EQ(copied, "look at this");
  g_signal_emit_by_name(buttons[1], "clicked");
  EXPECT_EQ(screen->presentedViewController(), nullptr);
  EXPECT_TRUE(dialogButtons(*sheet).empty());
}

TEST_F(ContainerE2E, TheConsentDialogGrantsOrRefusesAndTheDecisionIsStored) {
  writePage("consent.html", std::string(kSequence) + R"js(sequence([
    ["vantuRequestPermission", {permission: "camera"}],
    ["vantuRequestPermission", {permission: "microphone"}],
    ["vantuCheckPermission", {permission: "camera,microphone"}]
  ]);)js");
  auto screen = stack->open(url("consent.html"));
  const ShownConsentPrompt* prompt = nullptr;
  ASSERT_TRUE(runMainContextUntil([&] { return (prompt = shownConsentPrompt(ProtectedResource::camera)); }, kWait));
  const std::string question = gtk_label_get_text(GTK_LABEL(prompt->question));
  EXPECT_TRUE(question.starts_with("Allow \u201c") && question.ends_with("\u201d to use your camera?")) << question;
  EXPECT_EQ(gtk_window_get_transient_for(prompt->window), stack->window()->gtkWindow());
  g_signal_emit_by_name(prompt->allow, "clicked");
  EXPECT_EQ(shownConsentPrompt(ProtectedResource::camera), nullptr);
  // Closing the dialog refuses.
  ASSERT_TRUE(runMainContextUntil([&] { return (prompt = shownConsentPrompt(ProtectedResource::microphone)); }, kWait));
  gtk_window_close(prompt->window);
  EXPECT_EQ(waitForTitle(screen), R"([{"data":{"camera":1},"success":true,"authorizedStatus":true},)"
                                  R"({"data":{"microphone":0},"success":true,"authorizedStatus":false},)"
                                  R"({"success":true,"data":{"camera":1,"microphone":0}}])");
  EXPECT_TRUE(persisted(ProtectedResource::camera, AuthorizationState::authorized));
  EXPECT_TRUE(persisted(ProtectedResource::microphone, AuthorizationState::denied));
}

TEST_F(ContainerE2E, OpenSettingsLeadsToTheSettingsPageWhoseEditsThePageSees) {
  ASSERT_TRUE(permissions()->set(ProtectedResource::contacts, AuthorizationState::denied));
  writePage("settings.html", R"js(
    vantu.call("vantuRequestPermission", {permission: "contacts"}, function (asked) {
      document.title = "asked:" + JSON.stringify(asked);
      (function check() {
        vantu.call("vantuCheckPermission", {permission: "contacts"}, function (a) {
          if (a.data.contacts === 1) document.title = "done:" + JSON.stringify(a); else setTimeout(check, 50);
        });
      })();
    });)js");
  auto screen = stack->open(url("settings.html"));
  pressAlertButton(screen, 0, "Open Settings");
  EXPECT_EQ(waitForTitle(screen, "asked:"), R"({"data":{"contacts":0},"success":true,"authorizedStatus":false})");
  ASSERT_NE(settingsPageWindow(), nullptr);
  // Each resource offers only its own states.
  for (auto resource : linux_platform::PermissionStore::resources()) {
    GtkDropDown* choice = settingsPageChoice(resource);
    ASSERT_NE(choice, nullptr);
    EXPECT_EQ(g_list_model_get_n_items(gtk_drop_down_get_model(choice)),
              linux_platform::PermissionStore::statesFor(resource).size());
  }
  GtkDropDown* contacts = settingsPageChoice(ProtectedResource::contacts);
  EXPECT_EQ(gtk_drop_down_get_selected(contacts), 1u);  // denied
  gtk_drop_down_set_selected(contacts, 3);              // authorized
  EXPECT_EQ(waitForTitle(screen), R"({"success":true,"data":{"contacts":1}})");
  EXPECT_TRUE(persisted(ProtectedResource::contacts, AuthorizationState::authorized));
  // A decision made elsewhere shows on the open page.
  permissions()->set(ProtectedResource::speechRecognition, AuthorizationState::restricted);
  EXPECT_EQ(gtk_drop_down_get_selected(settingsPageChoice(ProtectedResource::speechRecognition)), 2u);
  gtk_window_destroy(settingsPageWindow());
  EXPECT_EQ(settingsPageWindow(), nullptr);
}

TEST_F(ContainerE2E, ANavigationOutsideTheWhitelistShowsTheErrorPage) {
  // "localhost" is not on the list; 127.0.0.1 is.
  writePage("leave.html", "location.href = location.href.replace('127.0.0.1', 'localhost');");
  auto screen = stack->open(url("leave.html"));
  const std::string message = H5ProviderError::urlDomainWhitelistingError().message();
  std::string title;
  ASSERT_TRUE(runMainContextUntil([&] { return (title = screen->webView()->title()) == message; }, kWait)) << title;
  EXPECT_EQ(screen->webView()->uri().rfind("http://localhost:", 0), 0u);
  EXPECT_FALSE(page::PageBridge::isAllowed({true, screen->webView()->uri()}));
}

TEST_F(ContainerE2E, ThePasswordDialogCancelsLocksOutAndAcceptsTheRightPassword) {
  writePage("auth.html", std::string(kSequence) + R"js(
    var ask = {Cancel: "Huỷ", authenticationReason: "Pay 20 000 VND"};
    sequence([["vantuAuthenticateOnDevice", ask], ["vantuAuthenticateOnDevice", ask],
              ["vantuAuthenticateOnDevice", ask]]);)js");
  auto screen = stack->open(url("auth.html"));
  // Each answer in turn, one dialog each; nothing typed means "cancel".
  const std::vector<std::optional<std::string>> typed = {std::nullopt, "wrong", "wrong", "wrong", "wrong", "right"};
  const std::vector<bool> warned = {false, false, true, true, false, true};
  for (std::size_t i = 0; i < typed.size(); ++i) {
    SCOPED_TRACE(i);
    std::optional<PasswordDialog> dialog;
    ASSERT_TRUE(runMainContextUntil([&] { return (dialog = shownPasswordDialog()).has_value(); }, kWait));
    EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(dialog->cancelButton)), "Huỷ");
    EXPECT_EQ(gtk_widget_get_visible(dialog->warning), warned[i]);
    EXPECT_EQ(gtk_window_get_transient_for(dialog->window), stack->window()->gtkWindow());
    if (!typed[i]) {
      g_signal_emit_by_name(dialog->cancelButton, "clicked");
    } else {
      gtk_editable_set_text(GTK_EDITABLE(dialog->entry), typed[i]->c_str());
      g_signal_emit_by_name(dialog->entry, "activate");
    }
  }
  EXPECT_EQ(waitForTitle(screen),
            R"([{"data":{"success":false,"error":{"code":1,"message":"Authentication was cancelled by the user!"}}},)"
            R"({"data":{"success":false,"error":{"code":2,"message":"Maximum number of attempts exceeded!"}}},)"
            R"({"data":{"success":true}}])");
  EXPECT_FALSE(shownPasswordDialog());
}

// Native to page: a host's events, the container's visibility, progress
// of a download and batched answers.

TEST_F(ContainerE2E, HostEventsReachTheTopFrameUntilThePageUnsubscribes) {
  // The frame has a receiver of its own: anything delivered to it would show.
  writePage("listening-frame.html", R"js(
    window.vantu = {__receive: function (batch) { parent.postMessage("frame received " + JSON.stringify(batch), "*"); }};)js");
  writePage("listening.html", R"js(
    var seen = [];
    window.addEventListener("message", function (event) { seen.push(event.data); });
    var unsubscribe = vantu.on("signedIn", function (detail) {
      seen.push(detail);
      unsubscribe();
      document.title = "once:" + JSON.stringify(seen);
    });
    vantu.on("probe", function () { document.title = "done:" + JSON.stringify(seen); });
    document.querySelector("iframe").addEventListener("load", function () { document.title = "ready:"; });)js",
            R"(<iframe src="listening-frame.html"></iframe>)");
  auto screen = stack->open(url("listening.html"));
  waitForTitle(screen, "ready:");
  stack->emit("signedIn", Dict{{"user", "ana"}});
  EXPECT_EQ(waitForTitle(screen, "once:"), R"([{"user":"ana"}])");
  stack->emit("signedIn", Dict{{"user", "bao"}});  // no listener any more
  stack->emit("probe", Value());
  EXPECT_EQ(waitForTitle(screen), R"([{"user":"ana"}])");
}

TEST_F(ContainerE2E, APageHearsWhenItsScreenIsCoveredAndShownAgain) {
  writePage("covered.html", R"js(
    var seen = [];
    ["containerHidden", "containerShown"].forEach(function (name) {
      vantu.on(name, function (detail) {
        seen.push([name, detail]);
        if (name === "containerShown") document.title = "done:" + JSON.stringify(seen);
      });
    });
    document.title = "ready:";)js");
  writePage("cover.html", "");
  auto screen = stack->open(url("covered.html"));
  waitForTitle(screen, "ready:");
  auto cover = stack->open(url("cover.html"));
  ASSERT_TRUE(runMainContextUntil([&] { return !gtk_widget_get_mapped(screen->widget()); }, kWait));
  stack->navigation()->pop();
  EXPECT_EQ(waitForTitle(screen), R"([["containerHidden",null],["containerShown",null]])");
}

TEST_F(ContainerE2E, ADownloadFromASlowServerShowsIncreasingProgressThenTheAnswer) {
  // 8 chunks of 64 KiB, 150 ms apart, with the length announced.
  constexpr std::size_t kChunk = 64 * 1024, kChunks = 8;
  httplib::Server slow;
  slow.Get("/slow.bin", [&](const httplib::Request&, httplib::Response& response) {
    response.set_content_provider(kChunk * kChunks, "application/octet-stream",
                                  [&](std::size_t offset, std::size_t, httplib::DataSink& sink) {
                                    if (offset > 0) std::this_thread::sleep_for(std::chrono::milliseconds(150));
                                    const std::string chunk(kChunk, 'v');
                                    return sink.write(chunk.data(), chunk.size());
                                  });
  });
  const int port = slow.bind_to_any_port("127.0.0.1");
  std::thread serving([&] { slow.listen_after_bind(); });
  writePage("progress.html", "var port = " + std::to_string(port) + ";" + R"js(
    var reports = [];
    vantu.invoke("vantuDownloadFile", {fileName: "e2e-slow.bin", fileDownloadUrl: "http://127.0.0.1:" + port + "/slow.bin"},
                 {onProgress: function (p) { reports.push(p); }})
      .then(function (answer) { document.title = "done:" + JSON.stringify({reports: reports, answer: answer}); });)js");
  auto screen = stack->open(url("progress.html"));
  auto seen = parse(waitForTitle(screen));
  slow.stop();
  serving.join();
  const Dict* result = seen.asDict();
  ASSERT_TRUE(result);
  const auto reports = result->getArray("reports").value_or(Array{});
  ASSERT_GE(reports.size(), 2u) << json::write(seen);
  std::int64_t last = 0;
  for (const auto& report : reports) {
    const Dict* p = report.asDict();
    ASSERT_TRUE(p) << json::write(report);
    EXPECT_GT(p->getInt("received").value_or(0), last) << json::write(seen);
    EXPECT_EQ(p->getInt("total"), static_cast<std::int64_t>(kChunk * kChunks));
    last = p->getInt("received").value_or(0);
  }
  EXPECT_EQ(last, static_cast<std::int64_t>(kChunk * kChunks));
  auto download = result->getDict("answer") ? result->getDict("answer")->getDict("data") : std::nullopt;
  ASSERT_TRUE(download) << json::write(seen);
  EXPECT_EQ(download->getBool("success"), true);
  std::error_code ignored;
  fs::remove(download->getString("filePath").value_or(""), ignored);
}

TEST_F(ContainerE2E, ThreeThousandCallsInFlightAreAnsweredInOrder) {
  struct EchoHandler : H5BaseHandler {
    void handleWith(H5HandlerInputParams params) override { params.callback(Dict{{"data", params.data}}); }
  };
  registry->add("e2e.echo", [] { return std::make_shared<EchoHandler>(); });
  writePage("pipelined.html", R"js(
    var order = [], turns = 0, inTurn = false, n = 3000;
    for (var i = 0; i < n; i++) {
      vantu.call("e2e.echo", {i: i}, function (answer) {
        // Answers handled in one task came in one batch.
        if (!inTurn) { inTurn = true; turns++; queueMicrotask(function () { inTurn = false; }); }
        order.push(answer.data.i);
        if (order.length === n) {
          var inOrder = order.every(function (v, k) { return v === k; });
          document.title = "done:" + JSON.stringify({inOrder: inOrder, count: order.length, turns: turns});
        }
      });
    })js");
  auto screen = stack->open(url("pipelined.html"));
  auto seen = parse(waitForTitle(screen));
  const Dict* result = seen.asDict();
  ASSERT_TRUE(result);
  EXPECT_EQ(result->getBool("inOrder"), true);
  EXPECT_EQ(result->getInt("count"), 3000);
  // How many batches carried them depends on timing; shown, not asserted.
  std::printf("3000 pipelined answers arrived in %lld page tasks\n",
              static_cast<long long>(result->getInt("turns").value_or(-1)));
}

}  // namespace
}  // namespace vantu::gtk
