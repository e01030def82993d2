#pragma once
// The main queue on GLib's default main context, which GTK runs: main-queue
// work interleaves with GTK and WebKit events on the same thread.
//
// Tasks posted without a delay run in posting order from one source that
// drains a queue (GLib gives no order between separate idle sources);
// delayed tasks each get a timeout source.

#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "platforms/linux/linux_dispatch.h"

namespace vantu::gtk {

class GLibMainContext : public linux_platform::MainContext {
 public:
  /// The calling thread is the main thread from now on.
  GLibMainContext();

  void post(Duration delay, Task task) override;
  bool isMainThread() const override { return std::this_thread::get_id() == mainThread_; }

 private:
  static int drain(void* self);

  std::thread::id mainThread_;
  std::mutex mutex_;
  std::deque<Task> ready_;
  bool scheduled_ = false;
};

/// Runs GLib's default main context until `done()` holds (checked after
/// every event) or `timeout` has passed. Returns whether `done()` held.
bool runMainContextUntil(const std::function<bool()>& done, Duration timeout);

}  // namespace vantu::gtk
