#pragma once
// H5Reachability: whether the device can reach the network, and over which
// kind of link, read from the platform's reachability port. A running
// notifier reports every change: `whenReachable` / `whenUnreachable` on the
// main queue, then the notification "reachabilityChanged" (with the monitor
// as its object) on the monitor's notification centre.
//
// Errors never travel as exceptions: the factories return a result that holds
// either the monitor or a ReachabilityError, and `startNotifier` returns the
// error it met (nothing on success). Bridges must not let exceptions escape,
// and a caller that ignores a failed start still gets answers from direct
// flag fetches.

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "vantu/platform/dispatch.h"
#include "vantu/platform/notification_center.h"
#include "vantu/platform/object.h"
#include "vantu/platform/reachability.h"
#include "vantu/value/result.h"

namespace vantu {

/// Posted by a running notifier on every change, with the monitor as object.
inline constexpr std::string_view kReachabilityChangedNotification = "reachabilityChanged";
/// Exported for hosts that listen under this name; the notifier does not post it.
inline constexpr std::string_view ReachabilityChangedNotification = "ReachabilityChangedNotification";

enum class Connection { none, wifi, cellular };
/// "No Connection", "WiFi", "Cellular".
std::string_view connectionDescription(Connection connection);

/// The older naming of the same idea.
enum class NetworkStatus { notReachable, reachableViaWiFi, reachableViaWWAN };

struct ReachabilityError {
  enum class Kind {
    FailedToCreateWithAddress,   // carries `address`
    FailedToCreateWithHostname,  // carries `hostname`
    UnableToSetCallback,
    UnableToSetDispatchQueue,
    UnableToGetInitialFlags,
  };

  Kind kind = Kind::UnableToGetInitialFlags;
  SocketAddress address;
  std::string hostname;

  static ReachabilityError failedToCreateWithAddress(SocketAddress address);
  static ReachabilityError failedToCreateWithHostname(std::string hostname);
  static ReachabilityError of(Kind kind);

  /// The case's name, with what it carries (for logs).
  std::string description() const;
  bool operator==(const ReachabilityError&) const = default;
};

/// The connection the flags give: none without flags or without the
/// reachable bit; over a cellular link (the WWAN bit) cellular when
/// `allowsCellularConnection`, else none; otherwise wifi, unless a connection
/// is required and cannot be made automatically (neither on traffic nor on
/// demand, or only with user intervention).
Connection connectionForFlags(std::optional<ReachabilityFlags> flags, bool allowsCellularConnection);

/// "unavailable flags" without flags; otherwise ten characters: the link
/// ("W" WWAN on a device, "-" on a device without it, "X" off a device), "R"
/// reachable, a blank, then c t i C D l d (connection required, transient,
/// intervention required, on traffic, on demand, local address, direct),
/// each "-" when its bit is clear.
std::string describeFlags(std::optional<ReachabilityFlags> flags, bool isRunningOnDevice);

class H5Reachability;

/// Either a monitor or the reason it could not be made; `ok()` tells which.
using ReachabilityResult = Result<std::shared_ptr<H5Reachability>, ReachabilityError>;

class H5Reachability : public Object, public std::enable_shared_from_this<H5Reachability> {
 public:
  using Listener = std::function<void(H5Reachability&)>;

  /// The label of the queue a monitor makes for itself.
  static constexpr std::string_view kQueueLabel = "com.vantu.h5.reachability";

  // Factories. `queue` is where platform callbacks and flag fetches run; by
  // default each monitor makes its own serial queue labelled kQueueLabel.
  // (Queue priorities and target queues are left to the platform's queue.)

  /// General internet reachability: a handle for the zero IPv4 address.
  static ReachabilityResult makeForInternet(std::shared_ptr<SerialQueue> queue = nullptr);
  static ReachabilityResult makeForHostname(const std::string& hostname, std::shared_ptr<SerialQueue> queue = nullptr);
  /// Wraps an existing handle.
  static std::shared_ptr<H5Reachability> make(std::shared_ptr<ReachabilityHandle> reachabilityRef,
                                              std::shared_ptr<SerialQueue> queue = nullptr);

  H5Reachability(const H5Reachability&) = delete;
  H5Reachability& operator=(const H5Reachability&) = delete;
  /// Stops the notifier.
  ~H5Reachability() override;

  // Set and read on the main queue.
  Listener whenReachable;    // called when a change leaves a connection
  Listener whenUnreachable;  // called when a change leaves no connection
  bool reachableOnWWAN = true;  // kept for compatibility; no decision reads it
  bool allowsCellularConnection = true;
  /// Where changes are posted; the platform's centre by default.
  std::shared_ptr<NotificationCenter> notificationCenter;
  /// Shown in `description`; from the platform's device facts by default.
  bool isRunningOnDevice = true;

  /// Starts reporting changes. Starting a running notifier does nothing.
  /// Returns the error met, after undoing the registration.
  [[nodiscard]] std::optional<ReachabilityError> startNotifier();
  /// Clears the handle's callback and queue.
  void stopNotifier();
  bool notifierRunning() const { return notifierRunning_; }

  // Queries. Each reads the stored flags, fetching them first (synchronously,
  // on the monitor's queue) while none are stored.
  Connection connection();
  NetworkStatus currentReachabilityStatus();
  /// The description of `connection()`.
  std::string currentReachabilityString();
  bool isReachable();
  bool isReachableViaWWAN();
  bool isReachableViaWiFi();
  std::string description();

  /// The last known flags, without fetching.
  std::optional<ReachabilityFlags> flags() const;
  const std::shared_ptr<ReachabilityHandle>& reachabilityRef() const { return reachabilityRef_; }
  const std::shared_ptr<SerialQueue>& reachabilitySerialQueue() const { return queue_; }

 private:
  H5Reachability(std::shared_ptr<ReachabilityHandle> reachabilityRef, std::shared_ptr<SerialQueue> queue);

  std::optional<ReachabilityFlags> readFlags();
  /// The change step: store the flags, then (on the main queue, if this
  /// monitor still exists) call the listener and post the notification.
  void flagsChanged(ReachabilityFlags flags);
  void clearRegistration();

  std::atomic<bool> notifierRunning_{false};
  std::shared_ptr<ReachabilityHandle> reachabilityRef_;
  std::shared_ptr<SerialQueue> queue_;
  // Taken at creation: changes arrive on the reachability queue, which may
  // outlive the installed platform.
  std::shared_ptr<SerialQueue> main_;
  mutable std::mutex flagsMutex_;  // flags are written on the queue and read on the main queue
  std::optional<ReachabilityFlags> flags_;
};

}  // namespace vantu
