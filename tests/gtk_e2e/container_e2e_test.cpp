// Real pages in the WebKitGTK container calling real bridges through the
// injected SDK. Runs under a display (ctest wraps it in xvfb-run without one).
// Each page reports what it saw by setting its title to "done:<json>".

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

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
    options.webView.registry = std::make_shared<BridgeRegistry>();
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

TEST_F(ContainerE2E, APickerWithoutADialogIsCancelledSoTheCallIsAnswered) {
  writePage("picker.html", std::string(kSequence) + R"js(sequence([
    ["vantuPickFile", {extensionsAllowed: ["pdf"], maxLengthPerFile: 1000, maxNumberOfFiles: 1}],
    ["vantuPickFile", {extensionsAllowed: ["pdf"], maxLengthPerFile: 1000, maxNumberOfFiles: 1}]
  ]);)js");
  auto screen = stack->open(url("picker.html"));
  // Both calls answered: the first picker did not leave the bridge busy.
  const std::string cancelled = R"({"error":2,"message":"User cancelled the file pick operation!"})";
  EXPECT_EQ(waitForTitle(screen), "[" + cancelled + "," + cancelled + "]");
  EXPECT_EQ(screen->presentedViewController(), nullptr);
}

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

}  // namespace
}  // namespace vantu::gtk
