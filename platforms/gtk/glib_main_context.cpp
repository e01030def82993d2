#include "platforms/gtk/glib_main_context.h"

#include <glib.h>

#include <chrono>

namespace vantu::gtk {

GLibMainContext::GLibMainContext() : mainThread_(std::this_thread::get_id()) {}

void GLibMainContext::post(Duration delay, Task task) {
  if (delay > Duration::zero()) {
    const auto ms = std::chrono::ceil<std::chrono::milliseconds>(delay).count();
    g_timeout_add_full(
        G_PRIORITY_DEFAULT, static_cast<guint>(ms),
        [](gpointer data) -> gboolean {
          (*static_cast<Task*>(data))();
          return G_SOURCE_REMOVE;
        },
        new Task(std::move(task)), [](gpointer data) { delete static_cast<Task*>(data); });
    return;
  }
  std::lock_guard lock(mutex_);
  ready_.push_back(std::move(task));
  if (scheduled_) return;
  scheduled_ = true;
  // Not g_main_context_invoke: on the main thread it would run the task at
  // once, ahead of the work posted before it. The context lives for the
  // whole process (the platform holds it).
  g_idle_add_full(G_PRIORITY_DEFAULT, &GLibMainContext::drain, this, nullptr);
}

int GLibMainContext::drain(void* self) {
  auto* context = static_cast<GLibMainContext*>(self);
  // Runs what was queued when the drain began; later posts wait for the next
  // turn so GTK and WebKit events are not starved.
  std::deque<Task> batch;
  {
    std::lock_guard lock(context->mutex_);
    batch.swap(context->ready_);
  }
  for (auto& task : batch) task();
  std::lock_guard lock(context->mutex_);
  if (context->ready_.empty()) {
    context->scheduled_ = false;
    return G_SOURCE_REMOVE;
  }
  return G_SOURCE_CONTINUE;
}

bool runMainContextUntil(const std::function<bool()>& done, Duration timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  // A timer wakes the loop so the deadline is seen even with no events.
  const guint tick = g_timeout_add(50, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
  bool held = done();
  while (!held && std::chrono::steady_clock::now() < deadline) {
    g_main_context_iteration(nullptr, TRUE);
    held = done();
  }
  g_source_remove(tick);
  return held;
}

}  // namespace vantu::gtk
