#include <glib.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "vantu/core/vantu_h5_delegate.h"

// The host's own token service: blocks while it asks the server.
std::string fetchTokenFromServer();

// Runs `work` on the main thread (GLib's default main context, which GTK
// runs), from any thread.
void onMainThread(std::function<void()> work) {
  g_main_context_invoke(
      nullptr,
      [](gpointer data) -> gboolean {
        std::unique_ptr<std::function<void()>> task(static_cast<std::function<void()>*>(data));
        (*task)();
        return G_SOURCE_REMOVE;
      },
      new std::function<void()>(std::move(work)));
}

class ShopDelegate : public vantu::VantuH5Delegate {
 public:
  // Called on the main thread; answered at once, once.
  void getCustomerId(vantu::DelegateHandler handler) override {
    if (customerId_.empty()) return handler(false, std::nullopt, std::nullopt);
    handler(true, std::nullopt, vantu::Value(customerId_));
  }

  // Slow work leaves the main thread; the answer comes back to it.
  void fetchAuthToken(vantu::Dict, vantu::DelegateHandler handler) override {
    std::thread([handler = std::move(handler)]() mutable {
      std::string token = fetchTokenFromServer();
      onMainThread([handler = std::move(handler), token = std::move(token)] {
        handler(true, std::nullopt, vantu::Value(vantu::Dict{{"accessToken", token}}));
      });
    }).detach();
  }

  // An operation that cannot succeed says why; the page gets the bridge's
  // own failure text, never this error.
  void openDeeplink(std::string deeplink, vantu::DelegateHandler handler) override {
    vantu::PlatformError error;
    error.domain = "ShopHost";
    error.code = 1;
    error.localizedDescription = "unknown link " + deeplink;
    handler(false, error, std::nullopt);
  }

 private:
  std::string customerId_ = "cust-42";
};

// Every screen of the container gets the delegate.
std::shared_ptr<vantu::VantuH5Delegate> makeShopDelegate() { return std::make_shared<ShopDelegate>(); }
