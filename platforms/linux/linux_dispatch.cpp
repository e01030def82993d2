#include "platforms/linux/linux_dispatch.h"

#include <exception>
#include <future>
#include <utility>

namespace vantu::linux_platform {

using Clock = TaskSchedule::Clock;

// --- TaskSchedule

void TaskSchedule::add(Clock::time_point due, Task task) {
  // Zero-delay work goes straight to the ready list; it must not overtake
  // ready work through the heap, nor be overtaken by later zero-delay work.
  if (due == Clock::time_point::min()) {
    ready_.push_back(std::move(task));
    return;
  }
  timers_.push(Timer{due, sequence_++, std::move(task)});
}

bool TaskSchedule::takeReady(Clock::time_point now, Task& task) {
  while (!timers_.empty() && timers_.top().due <= now) {
    ready_.push_back(std::move(timers_.top().task));
    timers_.pop();
  }
  if (ready_.empty()) return false;
  task = std::move(ready_.front());
  ready_.pop_front();
  return true;
}

std::optional<Clock::time_point> TaskSchedule::nextTimer() const {
  if (timers_.empty()) return std::nullopt;
  return timers_.top().due;
}

bool TaskSchedule::hasReady(Clock::time_point now) const {
  return !ready_.empty() || (!timers_.empty() && timers_.top().due <= now);
}

void TaskSchedule::dropTimers() { timers_ = {}; }

namespace {

/// When work posted with `delay` becomes due.
Clock::time_point dueAfter(Duration delay) {
  if (delay <= Duration::zero()) return Clock::time_point::min();
  return Clock::now() + std::chrono::duration_cast<Clock::duration>(delay);
}

/// Runs `task` through `post` and waits for it, passing on what it throws.
/// The promise is shared with the posted work: the waiter may return and
/// unwind while the other thread is still inside `set_value`.
void postAndWait(const std::function<void(Task)>& post, Task task) {
  auto done = std::make_shared<std::promise<void>>();
  auto finished = done->get_future();
  post([done, &task] {
    try {
      task();
      done->set_value();
    } catch (...) {
      done->set_exception(std::current_exception());
    }
  });
  finished.get();
}

/// The main queue: a serial queue over the main context.
class MainContextQueue : public SerialQueue {
 public:
  explicit MainContextQueue(std::shared_ptr<MainContext> context)
      : SerialQueue("com.vantu.main"), context_(std::move(context)) {}

 protected:
  void doAsync(Task task) override { context_->post(Duration::zero(), std::move(task)); }
  void doAsyncAfter(Duration delay, Task task) override { context_->post(delay, std::move(task)); }
  void doSync(Task task) override {
    if (context_->isMainThread()) {
      task();
      return;
    }
    postAndWait([this](Task t) { context_->post(Duration::zero(), std::move(t)); }, std::move(task));
  }

 private:
  std::shared_ptr<MainContext> context_;
};

class Token : public OutstandingWork {
 public:
  explicit Token(std::shared_ptr<std::atomic<std::size_t>> counter) : counter_(std::move(counter)) { ++*counter_; }
  ~Token() override { --*counter_; }

 private:
  std::shared_ptr<std::atomic<std::size_t>> counter_;
};

}  // namespace

// --- EventLoop

/// Marks the calling thread as the one running the loop for its lifetime.
class EventLoop::Running {
 public:
  explicit Running(EventLoop& loop) : loop_(loop) {
    std::lock_guard lock(loop_.mutex_);
    previous_ = loop_.runner_;
    loop_.runner_ = std::this_thread::get_id();
    ++loop_.runDepth_;
  }
  ~Running() {
    std::lock_guard lock(loop_.mutex_);
    loop_.runner_ = previous_;
    --loop_.runDepth_;
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  EventLoop& loop_;
  std::thread::id previous_;
};

EventLoop::EventLoop() : owner_(std::this_thread::get_id()) {}

void EventLoop::post(Duration delay, Task task) {
  {
    std::lock_guard lock(mutex_);
    schedule_.add(dueAfter(delay), std::move(task));
  }
  wake_.notify_all();
}

bool EventLoop::isMainThread() const {
  std::lock_guard lock(mutex_);
  return (runDepth_ > 0 ? runner_ : owner_) == std::this_thread::get_id();
}

void EventLoop::stop() {
  {
    std::lock_guard lock(mutex_);
    stopRequested_ = true;
  }
  wake_.notify_all();
}

void EventLoop::run() { runLoop(std::nullopt, false, true, nullptr); }

std::size_t EventLoop::runUntilIdle() { return runLoop(std::nullopt, true, false, nullptr); }

std::size_t EventLoop::runFor(Duration duration) {
  return runLoop(Clock::now() + std::chrono::duration_cast<Clock::duration>(duration), false, false, nullptr);
}

bool EventLoop::runUntil(const std::function<bool()>& done, Duration timeout) {
  runLoop(Clock::now() + std::chrono::duration_cast<Clock::duration>(timeout), false, false, &done);
  return done();
}

std::size_t EventLoop::runLoop(std::optional<Clock::time_point> deadline, bool untilIdle, bool untilStopped,
                               const std::function<bool()>* done) {
  Running running(*this);
  std::size_t count = 0;
  std::unique_lock lock(mutex_);
  for (;;) {
    if (done) {
      lock.unlock();
      bool finished = (*done)();
      lock.lock();
      if (finished) break;
    }
    if (untilStopped && stopRequested_) {
      stopRequested_ = false;
      break;
    }
    auto now = Clock::now();
    if (deadline && now >= *deadline) break;
    Task task;
    if (schedule_.takeReady(now, task)) {
      lock.unlock();
      task();
      task = nullptr;  // released outside the lock: it may post or destroy things
      ++count;
      lock.lock();
      continue;
    }
    if (untilIdle) break;
    auto next = schedule_.nextTimer();
    if (deadline && (!next || *deadline < *next)) next = deadline;
    if (next) {
      wake_.wait_until(lock, *next);
    } else {
      wake_.wait(lock);
    }
  }
  return count;
}

// --- WorkerQueue

struct WorkerQueue::State {
  std::string label;
  std::mutex mutex;
  std::condition_variable wake;
  TaskSchedule schedule;
  bool shutdown = false;
  std::thread thread;
  std::thread::id worker;
};

WorkerQueue::WorkerQueue(std::string label) : SerialQueue(label), state_(std::make_shared<State>()) {
  state_->label = std::move(label);
}

WorkerQueue::~WorkerQueue() {
  std::thread thread;
  {
    std::lock_guard lock(state_->mutex);
    state_->shutdown = true;
    thread = std::move(state_->thread);
  }
  state_->wake.notify_all();
  if (!thread.joinable()) return;
  if (thread.get_id() == std::this_thread::get_id()) {
    thread.detach();  // the worker holds the state and ends after this task
  } else {
    thread.join();
  }
}

bool WorkerQueue::started() const {
  std::lock_guard lock(state_->mutex);
  return state_->worker != std::thread::id();
}

void WorkerQueue::add(Duration delay, Task task) {
  {
    std::lock_guard lock(state_->mutex);
    state_->schedule.add(dueAfter(delay), std::move(task));
    if (!state_->thread.joinable() && !state_->shutdown) {
      state_->thread = std::thread([state = state_] { work(state); });
      state_->worker = state_->thread.get_id();
    }
  }
  state_->wake.notify_all();
}

void WorkerQueue::work(const std::shared_ptr<State>& state) {
  std::unique_lock lock(state->mutex);
  for (;;) {
    Task task;
    if (state->schedule.takeReady(Clock::now(), task)) {
      lock.unlock();
      task();
      task = nullptr;
      lock.lock();
      continue;
    }
    if (state->shutdown) {
      state->schedule.dropTimers();
      return;
    }
    if (auto next = state->schedule.nextTimer()) {
      state->wake.wait_until(lock, *next);
    } else {
      state->wake.wait(lock);
    }
  }
}

void WorkerQueue::doAsync(Task task) { add(Duration::zero(), std::move(task)); }

void WorkerQueue::doAsyncAfter(Duration delay, Task task) { add(delay, std::move(task)); }

void WorkerQueue::doSync(Task task) {
  bool onWorker;
  {
    std::lock_guard lock(state_->mutex);
    onWorker = state_->worker == std::this_thread::get_id();
  }
  if (onWorker) {
    task();
    return;
  }
  postAndWait([this](Task t) { add(Duration::zero(), std::move(t)); }, std::move(task));
}

// --- LinuxDispatch

LinuxDispatch::LinuxDispatch(std::shared_ptr<MainContext> mainContext)
    : context_(std::move(mainContext)),
      start_(std::chrono::steady_clock::now()),
      outstanding_(std::make_shared<std::atomic<std::size_t>>(0)) {
  if (!context_) {
    loop_ = std::make_shared<EventLoop>();
    context_ = loop_;
  }
  main_ = std::make_shared<MainContextQueue>(context_);
}

std::shared_ptr<SerialQueue> LinuxDispatch::doMakeSerialQueue(std::string label) {
  return std::make_shared<WorkerQueue>(std::move(label));
}

Duration LinuxDispatch::doNow() const {
  return std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now() - start_);
}

std::shared_ptr<OutstandingWork> LinuxDispatch::doBeginOutstandingWork() { return std::make_shared<Token>(outstanding_); }

}  // namespace vantu::linux_platform
