#pragma once
// The host app's delegate, one per mini-app: sign-in through the host's
// dialog, the session's token and customer id, the host's settings as
// values, navigation and deep links handled by the host's window, and
// analytics written to the host's log. Everything runs on the main thread;
// each operation answers its handler exactly once.

#include <gtk/gtk.h>

#include <functional>
#include <map>
#include <string>

#include "analytics_log.h"
#include "login_dialog.h"
#include "session.h"
#include "vantu/core/vantu_h5_delegate.h"

namespace host_app {

/// What the delegates reach in the host.
struct HostServices {
  Session& session;
  LoginDialog& login;
  AnalyticsLog& analytics;
  /// The host's window (the login dialog's parent).
  std::function<GtkWindow*()> window;
  /// Shows a destination of the host ("shop", "wallet"); false for an
  /// unknown one.
  std::function<bool(const std::string& destination)> navigate;
  /// Opens "hostapp://<mini-app>/<page>" in that mini-app; false when the
  /// link names no mini-app.
  std::function<bool(const std::string& link)> openDeeplink;
  /// The host's settings, answered as values.
  std::map<std::string, std::string> settings;
};

class HostDelegate : public vantu::VantuH5Delegate {
 public:
  HostDelegate(std::string appId, HostServices& host) : appId_(std::move(appId)), host_(host) {}

  void login(vantu::Dict data, vantu::DelegateHandler handler) override;
  void logout(vantu::Dict data, vantu::DelegateHandler handler) override;
  void handleSessionExpiry(vantu::Dict data, vantu::DelegateHandler handler) override;
  void fetchAuthToken(vantu::Dict data, vantu::DelegateHandler handler) override;
  void getCustomerId(vantu::DelegateHandler handler) override;
  void fetchValuesForKeys(std::vector<std::string> keys, vantu::DelegateHandler handler) override;
  void navigate(std::string to, std::optional<vantu::Dict> data, bool clearBackStack, bool finishThis,
                vantu::DelegateHandler handler) override;
  void openDeeplink(std::string deeplink, vantu::DelegateHandler handler) override;
  void trackCustomEventFor(vantu::Dict variables, vantu::DelegateHandler handler) override;

 private:
  std::string appId_;
  HostServices& host_;
};

}  // namespace host_app
