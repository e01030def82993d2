#pragma once
// The events every page hears: the built-in ones of the device (network
// changes) and whatever a host posts for all its pages. Each page's bridge
// listens here and passes what it hears to its page; the headless runner
// listens to report them. Events for one container only (its visibility,
// a host's event for that container) go straight to that container's page
// bridges instead.

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "vantu/value/value.h"

namespace vantu::page {

class NetworkEvents;

class PageEvents {
 public:
  using Listener = std::function<void(std::string_view name, const Value& detail)>;

  static PageEvents& shared();

  /// Hears every event posted while the returned subscription lives. The
  /// first listener starts the built-in sources; they stop with the last.
  /// Main thread only.
  [[nodiscard]] std::shared_ptr<void> listen(Listener listener);
  /// Hands an event to every listener, in the order they started
  /// listening. Main thread only.
  void post(std::string_view name, const Value& detail);

  /// Forgets the listeners and stops the sources (a new platform is coming).
  void resetForTesting();

 private:
  PageEvents();
  ~PageEvents();
  void stopListening(std::uint64_t id);

  struct Entry {
    std::uint64_t id;
    Listener listener;
  };
  std::vector<Entry> listeners_;
  std::uint64_t nextId_ = 1;
  std::unique_ptr<NetworkEvents> network_;
};

/// The built-in event names.
inline constexpr std::string_view kNetworkChangedEvent = "networkChanged";
inline constexpr std::string_view kContainerShownEvent = "containerShown";
inline constexpr std::string_view kContainerHiddenEvent = "containerHidden";
inline constexpr std::string_view kWindowFocusEvent = "windowFocus";

}  // namespace vantu::page
