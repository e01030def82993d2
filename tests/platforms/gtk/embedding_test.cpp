// The embedding API (vantu/gtk/host_platform.h, vantu/gtk/container.h): two
// mini-apps in one host window, each with its own app id, whitelist,
// delegate and registry, must not see each other's storage, callers or
// bridges. Real pages, on a display (ctest wraps it in xvfb-run without one).

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "vantu/container/h5_provider_error.h"
#include "vantu/core/h5_base_handler.h"
#include "vantu/core/view_controller_context.h"
#include "vantu/gtk/container.h"
#include "vantu/gtk/directory_server.h"
#include "vantu/gtk/host_platform.h"
#include "vantu/value/json.h"

namespace vantu::gtk {
namespace {

namespace fs = std::filesystem;
constexpr auto kWait = std::chrono::seconds(30);

/// A delegate that answers as the host of one app and remembers the threads
/// it was called on.
class RecordingDelegate : public VantuH5Delegate {
 public:
  explicit RecordingDelegate(std::string customerId) : customerId_(std::move(customerId)) {}

  void getCustomerId(DelegateHandler handler) override {
    threads.push_back(std::this_thread::get_id());
    handler(true, std::nullopt, Value(customerId_));
  }
  void login(Dict, DelegateHandler handler) override {
    threads.push_back(std::this_thread::get_id());
    // Answered twice: the page's callback hears both; an invoke settles on
    // the first.
    handler(true, std::nullopt, std::nullopt);
    handler(false, std::nullopt, std::nullopt);
  }
  void logout(Dict, DelegateHandler handler) override {
    threads.push_back(std::this_thread::get_id());
    kept = std::move(handler);  // never answered while the test runs
  }
  void trackCustomEventFor(Dict variables, DelegateHandler handler) override {
    events.push_back(std::move(variables));
    handler(true, std::nullopt, std::nullopt);
  }

  std::vector<std::thread::id> threads;
  std::vector<Dict> events;
  DelegateHandler kept;

 private:
  std::string customerId_;
};

/// The host's own bridge: echoes its text with the caller's app id.
class EchoHandler : public H5BaseHandler {
 public:
  void handleWith(H5HandlerInputParams params) override {
    auto appId = params.viewController ? getUniqueAppIdentifierRecursively(*params.viewController) : std::nullopt;
    params.callback(Dict{{"echo", params.data.getString("text").value_or("")}, {"app", appId.value_or("")}});
  }
};

class Embedding : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    root() = fs::temp_directory_path() / ("vantu-embed-" + std::to_string(::getpid()));
    fs::create_directories(root() / "pages");
    HostPlatform::Options options;
    options.dataDirectory = root() / "data";
    host() = HostPlatform::install(std::move(options));
    ASSERT_TRUE(host()) << "no display";
    server() = std::make_unique<DirectoryServer>(root() / "pages");
  }
  static void TearDownTestSuite() {
    server().reset();
    host().reset();
    fs::remove_all(root());
  }

  void SetUp() override {
    ASSERT_TRUE(host());
    window = GTK_WINDOW(gtk_window_new());
    box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_window_set_child(window, box);
    gtk_window_present(window);
  }
  void TearDown() override {
    for (auto* container : {first.get(), second.get()}) {
      if (container) gtk_box_remove(GTK_BOX(box), container->widget());
    }
    first.reset();
    second.reset();
    gtk_window_destroy(window);
  }

  static fs::path& root() {
    static fs::path path;
    return path;
  }
  static std::unique_ptr<HostPlatform>& host() {
    static std::unique_ptr<HostPlatform> h;
    return h;
  }
  static std::unique_ptr<DirectoryServer>& server() {
    static std::unique_ptr<DirectoryServer> s;
    return s;
  }
  static std::string url(const std::string& page) { return server()->origin() + "/" + page; }

  /// Writes a page that calls the bridges of `steps` (a JS array of [bridge,
  /// data]) one after the other and reports every first answer in its title.
  static void writeSequence(const std::string& name, const std::string& steps) {
    std::ofstream(root() / "pages" / name) << R"(<!DOCTYPE html><html><head><title>loading</title></head><body><script>
var steps = )" << steps << R"(, results = [];
(function next(i) {
  if (i === steps.length) { document.title = "done:" + JSON.stringify(results); return; }
  vantu.call(steps[i][0], steps[i][1], function (answer) { results.push(answer); next(i + 1); });
})(0);
</script></body></html>)";
  }

  /// A container placed in the host's box.
  std::unique_ptr<Container> place(Container::Options options) {
    auto container = Container::create(*host(), std::move(options));
    gtk_box_append(GTK_BOX(box), container->widget());
    return container;
  }

  /// Waits until the container's top page's title starts with "done:" and
  /// returns the rest, parsed.
  static Value results(const Container& container) {
    std::string title;
    HostPlatform::runUntil([&] { return (title = container.titles().back()).rfind("done:", 0) == 0; }, kWait);
    EXPECT_EQ(title.rfind("done:", 0), 0u) << "title: " << title;
    auto parsed = json::parse(title.rfind("done:", 0) == 0 ? title.substr(5) : "null");
    return parsed.ok() ? parsed.value() : Value();
  }

  static Container::Options optionsFor(std::string appId, std::vector<std::string> domains) {
    Container::Options options;
    options.uniqueAppId = std::move(appId);
    options.allowedDomains = std::move(domains);
    return options;
  }

  GtkWindow* window = nullptr;
  GtkWidget* box = nullptr;
  std::unique_ptr<Container> first;
  std::unique_ptr<Container> second;
};

TEST_F(Embedding, TwoMiniAppsKeepTheirStorageApart) {
  writeSequence("save-a.html", R"([["vantuSaveData", {data: {note: "from a"}}], ["vantuGetData", {keys: ["note"]}]])");
  writeSequence("save-b.html", R"([["vantuGetData", {keys: ["note"]}], ["vantuSaveData", {data: {note: "from b"}}],
                                   ["vantuGetData", {keys: ["note"]}]])");
  first = place(optionsFor("embed.a", {"127.0.0.1"}));
  second = place(optionsFor("embed.b", {"127.0.0.1"}));
  EXPECT_EQ(first->window(), window);
  first->open(url("save-a.html"));
  EXPECT_EQ(json::write(results(*first)), R"([{"data":{}},{"data":{"note":"from a"}}])");
  second->open(url("save-b.html"));
  EXPECT_EQ(json::write(results(*second)), R"([{"data":{"note":""}},{"data":{}},{"data":{"note":"from b"}}])");
}

TEST_F(Embedding, EachContainerChecksPagesAgainstItsOwnWhitelist) {
  writeSequence("name.html", R"([["vantuDeviceName", {}]])");
  std::vector<std::string> calledA, calledB;
  auto a = optionsFor("embed.a", {"127.0.0.1"});
  a.observer.call = [&](const page::Message& m) { calledA.push_back(m.bridge); };
  auto b = optionsFor("embed.b", {"shop.example.com"});
  b.observer.call = [&](const page::Message& m) { calledB.push_back(m.bridge); };
  first = place(std::move(a));
  second = place(std::move(b));
  first->open(url("name.html"));
  second->open(url("name.html"));
  results(*first);
  // The refused load shows the error page, whose title is the refusal.
  const std::string refusal = H5ProviderError::urlDomainWhitelistingError().message();
  HostPlatform::runUntil([&] { return second->titles().back() == refusal; }, kWait);
  EXPECT_EQ(second->titles().back(), refusal);
  EXPECT_EQ(calledA, std::vector<std::string>{"vantuDeviceName"});
  EXPECT_TRUE(calledB.empty());
}

TEST_F(Embedding, EachContainerReachesItsOwnDelegateOnTheMainThread) {
  writeSequence("host.html", R"([["vantuFetchCustomerId", {}], ["vantuAnalyticsTracking", {eventName: "opened"}]])");
  auto alice = std::make_shared<RecordingDelegate>("alice");
  auto bob = std::make_shared<RecordingDelegate>("bob");
  auto a = optionsFor("embed.a", {"127.0.0.1"});
  a.delegate = alice;
  auto b = optionsFor("embed.b", {"127.0.0.1"});
  b.delegate = bob;
  first = place(std::move(a));
  second = place(std::move(b));
  first->open(url("host.html"));
  second->open(url("host.html"));
  const auto answersA = json::write(results(*first));
  const auto answersB = json::write(results(*second));
  EXPECT_EQ(answersA.find("\"alice\""), 1u) << answersA;
  EXPECT_EQ(answersB.find("\"bob\""), 1u) << answersB;
  ASSERT_FALSE(alice->threads.empty());
  for (auto thread : alice->threads) EXPECT_EQ(thread, std::this_thread::get_id());
  // Every bridge call of a page is reported to its own app's delegate only.
  EXPECT_FALSE(alice->events.empty());
  EXPECT_EQ(alice->events.size(), bob->events.size());
}

TEST_F(Embedding, ADelegateThatAnswersTwiceOrNeverReachesThePageAsItAnswered) {
  std::ofstream(root() / "pages" / "twice.html") << R"(<html><body><script>
var heard = [];
vantu.call("vantuLogin", {}, function (answer) { heard.push(answer); });
vantu.invoke("vantuLogout", {}, {timeout: 300}).catch(function (e) {
  setTimeout(function () { document.title = "done:" + JSON.stringify({heard: heard, logout: e.code}); }, 200);
});
</script></body></html>)";
  auto delegate = std::make_shared<RecordingDelegate>("carol");
  auto options = optionsFor("embed.a", {"127.0.0.1"});
  options.delegate = delegate;
  first = place(std::move(options));
  first->open(url("twice.html"));
  EXPECT_EQ(json::write(results(*first)), R"({"heard":[{"data":{"success":true}},{"error":2,"message":"failed to login!"}],"logout":"timeout"})");
  EXPECT_TRUE(delegate->kept);
}

TEST_F(Embedding, AHostBridgeAnswersOnlyInTheContainerWhoseRegistryHasIt) {
  writeSequence("echo.html", R"([["hostEcho", {text: "hi"}]])");
  auto registry = std::make_shared<BridgeRegistry>();
  registerAllBridges(*registry);
  registry->add("hostEcho", [] { return std::make_shared<EchoHandler>(); });
  auto a = optionsFor("embed.a", {"127.0.0.1"});
  a.registry = registry;
  first = place(std::move(a));
  second = place(optionsFor("embed.b", {"127.0.0.1"}));
  first->open(url("echo.html"));
  second->open(url("echo.html"));
  EXPECT_EQ(json::write(results(*first)), R"([{"echo":"hi","app":"embed.a"}])");
  EXPECT_EQ(json::write(results(*second)), R"([{"error":2,"message":"Unknown bridge: hostEcho"}])");
}

TEST_F(Embedding, PagesPushOntoTheirOwnContainerAndOnlyAllowedApps) {
  std::ofstream(root() / "pages" / "pushed.html") << "<html><head><title>pushed</title></head></html>";
  const std::string pushed = url("pushed.html") + "?via=https";
  std::ofstream(root() / "pages" / "push.html") << R"(<html><body><script>
vantu.call("vantuPushWindow", {url: ")" << pushed << R"(", appId: "embed.other", params: {}}, function (refused) {
  document.title = "refused:" + refused.message;
  vantu.call("vantuPushWindow", {url: ")" << pushed << R"(", appId: "embed.shared", params: {}}, function () {});
});
</script></body></html>)";
  auto a = optionsFor("embed.a", {"127.0.0.1"});
  a.allowedAppIds = std::vector<std::string>{"embed.shared"};
  first = place(std::move(a));
  second = place(optionsFor("embed.b", {"127.0.0.1"}));
  second->open(url("pushed.html"));
  first->open(url("push.html"));
  // A push to an app id the container does not allow is refused as one the
  // provider could not make; the allowed one opens on the caller's
  // container (and gets no answer).
  ASSERT_TRUE(HostPlatform::runUntil(
      [&] { return first->depth() == 2 && first->titles().front().rfind("refused:", 0) == 0; }, kWait));
  EXPECT_EQ(first->titles().front(), "refused:Provider was nil or it returned nil result for view controller to push");
  EXPECT_EQ(first->urls().back(), pushed);
  EXPECT_EQ(second->depth(), 1u);
  EXPECT_TRUE(first->pop());
  EXPECT_FALSE(first->pop());
  first->push(pushed);
  EXPECT_EQ(first->depth(), 2u);
}

TEST_F(Embedding, AnAppIdIsRequiredAndUsedByOneContainerAtATime) {
  EXPECT_THROW(Container::create(*host(), optionsFor("", {})), std::invalid_argument);
  first = place(optionsFor("embed.a", {}));
  EXPECT_THROW(Container::create(*host(), optionsFor("embed.a", {})), std::invalid_argument);
  gtk_box_remove(GTK_BOX(box), first->widget());
  first.reset();
  first = place(optionsFor("embed.a", {}));
  EXPECT_EQ(first->uniqueAppId(), "embed.a");
  first->open("about:blank");
  EXPECT_THROW(first->open("about:blank"), std::logic_error);
}


TEST_F(Embedding, AHostEventReachesOnlyThePagesOfTheContainerThatEmitsIt) {
  std::ofstream(root() / "pages" / "listen.html") << R"(<!DOCTYPE html><html><head><title>loading</title></head><body><script>
var heard = [];
vantu.on("signedIn", function (detail) { heard.push(detail); });
vantu.on("probe", function () { document.title = "done:" + JSON.stringify(heard); });
document.title = "ready:";
</script></body></html>)";
  first = place(optionsFor("embed.a", {"127.0.0.1"}));
  second = place(optionsFor("embed.b", {"127.0.0.1"}));
  for (auto* container : {first.get(), second.get()}) {
    container->open(url("listen.html"));
    HostPlatform::runUntil([&] { return container->titles().back() == "ready:"; }, kWait);
  }
  first->emit("signedIn", Dict{{"user", "ana"}});
  for (auto* container : {first.get(), second.get()}) container->emit("probe", Value());
  EXPECT_EQ(json::write(results(*first)), R"([{"user":"ana"}])");
  EXPECT_EQ(json::write(results(*second)), "[]");
}

}  // namespace
}  // namespace vantu::gtk

