#include <gtk/gtk.h>

#include <chrono>
#include <filesystem>

#include "vantu/gtk/container.h"
#include "vantu/gtk/host_platform.h"

// Two mini-apps side by side in the host's own window.
int runTwoMiniApps(const std::filesystem::path& dataDirectory) {
  vantu::gtk::HostPlatform::Options platformOptions;
  platformOptions.dataDirectory = dataDirectory;
  platformOptions.bundleInfo = vantu::Dict{{"CFBundleDisplayName", "My Host"}};
  auto platform = vantu::gtk::HostPlatform::install(std::move(platformOptions));
  if (!platform) return 2;  // no display

  GtkWindow* window = GTK_WINDOW(gtk_window_new());
  gtk_window_set_hide_on_close(window, TRUE);
  GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
  gtk_box_set_homogeneous(GTK_BOX(row), TRUE);
  gtk_window_set_child(window, row);

  vantu::gtk::Container::Options shopOptions;
  shopOptions.uniqueAppId = "com.example.shop";
  shopOptions.allowedDomains = {"shop.example.com"};
  auto shop = vantu::gtk::Container::create(*platform, std::move(shopOptions));

  vantu::gtk::Container::Options walletOptions;
  walletOptions.uniqueAppId = "com.example.wallet";
  walletOptions.allowedDomains = {"pay.example.com"};
  auto wallet = vantu::gtk::Container::create(*platform, std::move(walletOptions));

  gtk_box_append(GTK_BOX(row), shop->widget());
  gtk_box_append(GTK_BOX(row), wallet->widget());
  shop->open("https://shop.example.com/");
  wallet->open("https://pay.example.com/");
  gtk_window_present(window);

  // GTK's main loop (a GtkApplication's works the same way).
  vantu::gtk::HostPlatform::runUntil([&] { return !gtk_widget_get_visible(GTK_WIDGET(window)); },
                                     std::chrono::hours(24 * 365));

  // Containers first, out of the layout; then the window; the platform last.
  gtk_box_remove(GTK_BOX(row), shop->widget());
  gtk_box_remove(GTK_BOX(row), wallet->widget());
  shop.reset();
  wallet.reset();
  gtk_window_destroy(window);
  return 0;
}
