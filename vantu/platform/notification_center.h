#pragma once
// Notification centre port: named notifications posted with an optional
// object and delivered to every observer of that name, synchronously, on the
// posting thread, in the order the observers were added.
//
// An observer stays registered for as long as the token `addObserver`
// returns is alive. The centre itself must be owned by a std::shared_ptr
// (the platform bundle holds it so); a token outliving its centre does
// nothing when destroyed.

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "vantu/platform/object.h"

namespace vantu {

struct Notification {
  std::string name;
  std::shared_ptr<Object> object;  // may be absent
};

class NotificationCenter;

/// Removes its observer when destroyed (or on `reset`). Move-only.
class ObserverToken {
 public:
  ObserverToken() = default;
  ObserverToken(std::weak_ptr<NotificationCenter> center, std::uint64_t id) : center_(std::move(center)), id_(id) {}
  ObserverToken(ObserverToken&& other) noexcept;
  ObserverToken& operator=(ObserverToken&& other) noexcept;
  ObserverToken(const ObserverToken&) = delete;
  ObserverToken& operator=(const ObserverToken&) = delete;
  ~ObserverToken() { reset(); }

  /// Removes the observer now; the token becomes empty.
  void reset();
  bool active() const { return id_ != 0; }

 private:
  std::weak_ptr<NotificationCenter> center_;
  std::uint64_t id_ = 0;
};

class NotificationCenter : public std::enable_shared_from_this<NotificationCenter> {
 public:
  using Observer = std::function<void(const Notification&)>;

  virtual ~NotificationCenter() = default;

  /// Delivers the notification to every current observer of `name`.
  void post(std::string_view name, std::shared_ptr<Object> object = nullptr) {
    doPost(Notification{std::string(name), std::move(object)});
  }

  /// Observes `name` until the returned token is destroyed.
  [[nodiscard]] ObserverToken addObserver(std::string name, Observer observer);

 protected:
  friend class ObserverToken;

  /// Registers an observer under `id` (never 0, never reused).
  virtual void doAddObserver(std::uint64_t id, std::string name, Observer observer) = 0;
  /// Unregisters it; an observer removed while a notification is being
  /// delivered is not called after its removal.
  virtual void doRemoveObserver(std::uint64_t id) = 0;
  virtual void doPost(const Notification& notification) = 0;

 private:
  std::atomic<std::uint64_t> nextId_{1};
};

}  // namespace vantu
