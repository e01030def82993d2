// An example host application: a GTK 4 window with two mini-apps in tabs,
// each in its own container (its own app id, whitelist, storage and
// delegate), a host delegate that signs users in through a dialog, hands
// out tokens, settings, navigation and deep links, and logs analytics, and
// a bridge of the host's own ("hostShowNotice").
//
//   vantu-host-app [--data-dir DIR] [--miniapps DIR] [--self-test]
//
// --self-test opens both mini-apps in their self-test mode, signs in through
// the dialog as a person would, checks what the host saw and exits 0 when
// everything held (1 otherwise, 2 when it cannot start).

#include <gtk/gtk.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <memory>
#include <string>
#include <vector>

#include "host_delegate.h"
#include "notice_bridge.h"
#include "vantu/gtk/container.h"
#include "vantu/gtk/directory_server.h"
#include "vantu/gtk/host_platform.h"

namespace fs = std::filesystem;

namespace {

struct Arguments {
  fs::path dataDir = fs::path(g_get_user_data_dir()) / "vantu-host-app";
  fs::path miniapps = HOST_APP_MINIAPPS;
  bool selfTest = false;
};

std::optional<Arguments> parseArguments(int argc, char** argv) {
  Arguments args;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--self-test") {
      args.selfTest = true;
    } else if ((arg == "--data-dir" || arg == "--miniapps") && i + 1 < argc) {
      (arg == "--data-dir" ? args.dataDir : args.miniapps) = argv[++i];
    } else {
      return std::nullopt;
    }
  }
  return args;
}

/// One mini-app: its files, the server that serves them and its container.
struct MiniApp {
  std::string appId;
  std::string name;  // its tab's title and its name in deep links
  std::vector<std::string> allowedDomains;
  std::unique_ptr<vantu::gtk::DirectoryServer> server;
  std::unique_ptr<vantu::gtk::Container> container;
};

/// Every built-in bridge plus the host's own; one registry per container
/// (a registry keeps one handler object per bridge).
std::shared_ptr<vantu::BridgeRegistry> makeRegistry(host_app::NoticeBridge::Show showNotice) {
  auto registry = std::make_shared<vantu::BridgeRegistry>();
  vantu::registerAllBridges(*registry);
  registry->add(std::string(host_app::NoticeBridge::kBridgeName),
                [showNotice] { return std::make_shared<host_app::NoticeBridge>(showNotice); });
  return registry;
}

/// What the self-test checks once both mini-apps reported; prints each.
int checkSelfTest(const std::vector<MiniApp>& apps, GtkNotebook* tabs, const std::string& notice,
                  const host_app::Session& session, const fs::path& analyticsFile) {
  std::ifstream in(analyticsFile);
  const std::string analytics((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  const auto& wallet = *apps[1].container;
  const std::vector<std::pair<std::string, bool>> checks = {
      {"the shop's page passed", apps[0].container->titles().front() == "host-selftest:done"},
      {"the wallet's page passed", wallet.titles().front() == "host-selftest:done"},
      {"the deep link opened the top-up page in the wallet",
       wallet.depth() == 2 && wallet.urls().back().ends_with("/topup.html")},
      {"navigation brought the wallet's tab to the front", gtk_notebook_get_current_page(tabs) == 1},
      {"the host's bridge showed the notice", notice == "com.example.shop: Welcome back, alice"},
      {"the page signed out again", !session.signedIn()},
      {"analytics were logged for the shop's event",
       analytics.find("\"app\":\"com.example.shop\"") != std::string::npos &&
           analytics.find("checkout_started") != std::string::npos},
      {"analytics were logged for the wallet", analytics.find("\"app\":\"com.example.wallet\"") != std::string::npos},
  };
  bool allHeld = true;
  for (const auto& [what, held] : checks) {
    std::printf("%s %s\n", held ? "ok  " : "FAIL", what.c_str());
    allHeld = allHeld && held;
  }
  for (const auto& app : apps) std::printf("%s: %s\n", app.appId.c_str(), app.container->titles().front().c_str());
  return allHeld ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  auto args = parseArguments(argc, argv);
  if (!args) {
    std::cerr << "usage: vantu-host-app [--data-dir DIR] [--miniapps DIR] [--self-test]\n";
    return 2;
  }
  if (args->selfTest) fs::remove_all(args->dataDir);  // a fresh start: nobody signed in, no stored notes
  fs::create_directories(args->dataDir);

  vantu::gtk::HostPlatform::Options platformOptions;
  platformOptions.dataDirectory = args->dataDir;
  platformOptions.bundleInfo = vantu::Dict{{"CFBundleDisplayName", "Host App"}, {"CFBundleShortVersionString", "1.0"}};
  auto platform = vantu::gtk::HostPlatform::install(std::move(platformOptions));
  if (!platform) {
    std::cerr << "vantu-host-app: no display (set DISPLAY, or run under xvfb-run)\n";
    return 2;
  }

  // The host's window: the mini-apps in tabs, the signed-in state and the
  // notice bar below.
  GtkWindow* window = GTK_WINDOW(gtk_window_new());
  gtk_window_set_title(window, "Host App");
  gtk_window_set_default_size(window, 900, 700);
  GtkWidget* column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  GtkWidget* tabs = gtk_notebook_new();
  gtk_widget_set_vexpand(tabs, TRUE);
  GtkWidget* status = gtk_label_new("Not signed in");
  GtkWidget* noticeBar = gtk_label_new("");
  gtk_box_append(GTK_BOX(column), tabs);
  gtk_box_append(GTK_BOX(column), status);
  gtk_box_append(GTK_BOX(column), noticeBar);
  gtk_window_set_child(window, column);

  host_app::Session session;
  session.onChange([status](const host_app::Session& s) {
    gtk_label_set_text(GTK_LABEL(status), s.signedIn() ? ("Signed in as " + *s.user()).c_str() : "Not signed in");
  });
  host_app::LoginDialog login;
  host_app::AnalyticsLog analytics(args->dataDir / "analytics.log");
  std::string notice;
  auto showNotice = [&](const std::string& appId, const std::string& text) {
    notice = appId + ": " + text;
    gtk_label_set_text(GTK_LABEL(noticeBar), notice.c_str());
  };

  std::vector<MiniApp> apps;
  apps.push_back({"com.example.shop", "shop", {"127.0.0.1", "shop.example.com"}, nullptr, nullptr});
  apps.push_back({"com.example.wallet", "wallet", {"127.0.0.1", "pay.example.com"}, nullptr, nullptr});
  auto indexOf = [&](const std::string& name) -> int {
    for (std::size_t i = 0; i < apps.size(); ++i) {
      if (apps[i].name == name) return static_cast<int>(i);
    }
    return -1;
  };

  host_app::HostServices services{
      .session = session,
      .login = login,
      .analytics = analytics,
      .window = [window] { return window; },
      .navigate =
          [&](const std::string& destination) {
            const int index = indexOf(destination);
            if (index >= 0) gtk_notebook_set_current_page(GTK_NOTEBOOK(tabs), index);
            return index >= 0;
          },
      .openDeeplink =
          [&](const std::string& link) {
            // hostapp://<mini-app>/<page>
            constexpr std::string_view scheme = "hostapp://";
            if (!link.starts_with(scheme)) return false;
            const std::string rest = link.substr(scheme.size());
            const auto slash = rest.find('/');
            const int index = indexOf(rest.substr(0, slash));
            if (index < 0) return false;
            auto& app = apps[static_cast<std::size_t>(index)];
            app.container->push(app.server->origin() + "/" + (slash == std::string::npos ? "" : rest.substr(slash + 1)));
            gtk_notebook_set_current_page(GTK_NOTEBOOK(tabs), index);
            return true;
          },
      .settings = {{"currency", "VND"}, {"locale", "vi-VN"}, {"theme", "light"}},
  };

  for (auto& app : apps) {
    try {
      app.server = std::make_unique<vantu::gtk::DirectoryServer>(args->miniapps / app.name);
    } catch (const std::exception& e) {
      std::cerr << "vantu-host-app: " << e.what() << "\n";
      return 2;
    }
    vantu::gtk::Container::Options options;
    options.uniqueAppId = app.appId;
    options.allowedDomains = app.allowedDomains;
    options.delegate = std::make_shared<host_app::HostDelegate>(app.appId, services);
    options.registry = makeRegistry(showNotice);
    app.container = vantu::gtk::Container::create(*platform, std::move(options));
    gtk_notebook_append_page(GTK_NOTEBOOK(tabs), app.container->widget(), gtk_label_new(app.name.c_str()));
    app.container->open(app.server->origin() + "/index.html" + (args->selfTest ? "?selftest=1" : ""));
  }

  bool closed = false;
  g_signal_connect(window, "close-request", G_CALLBACK(+[](GtkWindow*, gpointer flag) -> gboolean {
                     *static_cast<bool*>(flag) = true;
                     return FALSE;
                   }),
                   &closed);
  gtk_window_present(window);

  int exitCode = 0;
  if (!args->selfTest) {
    vantu::gtk::HostPlatform::runUntil([&] { return closed; }, std::chrono::hours(24 * 365));
  } else {
    auto reported = [&](const MiniApp& app) { return app.container->titles().front().starts_with("host-selftest:"); };
    vantu::gtk::HostPlatform::runUntil(
        [&] {
          // The person in front of the dialog: signs in as "alice".
          if (login.isOpen()) login.signInAs("alice");
          return reported(apps[0]) && reported(apps[1]);
        },
        std::chrono::seconds(90));
    exitCode = checkSelfTest(apps, GTK_NOTEBOOK(tabs), notice, session, analytics.file());
  }

  // Containers go before the window that holds their widgets and before the
  // platform.
  for (auto& app : apps) {
    gtk_notebook_remove_page(GTK_NOTEBOOK(tabs), gtk_notebook_page_num(GTK_NOTEBOOK(tabs), app.container->widget()));
    app.container.reset();
  }
  if (!closed) gtk_window_destroy(window);
  return exitCode;
}
