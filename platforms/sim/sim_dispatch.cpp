#include "platforms/sim/sim_dispatch.h"

namespace vantu::sim {
namespace {

class SimQueue : public SerialQueue {
 public:
  SimQueue(std::string label, std::weak_ptr<SimDispatch> loop) : SerialQueue(std::move(label)), loop_(std::move(loop)) {}

 protected:
  void doAsync(Task task) override { doAsyncAfter(Duration::zero(), std::move(task)); }

  void doAsyncAfter(Duration delay, Task task) override {
    if (auto loop = loop_.lock()) loop->post(delay, std::move(task));
  }

  void doSync(Task task) override {
    auto loop = loop_.lock();
    if (!loop) return;
    if (loop->onLoopThread()) {
      // One thread runs every queue, so waiting for the queue is running now.
      task();
      return;
    }
    std::mutex m;
    std::condition_variable done;
    bool finished = false;
    auto work = loop->beginOutstandingWork();
    loop->post(Duration::zero(), [&] {
      task();
      std::lock_guard lock(m);
      finished = true;
      done.notify_one();
    });
    work.reset();
    std::unique_lock lock(m);
    done.wait(lock, [&] { return finished; });
  }

 private:
  std::weak_ptr<SimDispatch> loop_;
};

}  // namespace

struct SimDispatch::Work : OutstandingWork {
  explicit Work(std::weak_ptr<SimDispatch> loop) : loop(std::move(loop)) {}
  ~Work() override {
    if (auto l = loop.lock()) l->workEnded();
  }
  std::weak_ptr<SimDispatch> loop;
};

SimDispatch::SimDispatch() : loopThread_(std::this_thread::get_id()) {}

std::shared_ptr<SerialQueue> SimDispatch::doMain() {
  std::lock_guard lock(mutex_);
  if (!main_) main_ = std::make_shared<SimQueue>("com.apple.main-thread", weak_from_this());
  return main_;
}

std::shared_ptr<SerialQueue> SimDispatch::doMakeSerialQueue(std::string label) {
  return std::make_shared<SimQueue>(std::move(label), weak_from_this());
}

Duration SimDispatch::doNow() const {
  std::lock_guard lock(mutex_);
  return now_;
}

std::shared_ptr<OutstandingWork> SimDispatch::doBeginOutstandingWork() {
  std::lock_guard lock(mutex_);
  ++outstanding_;
  return std::make_shared<Work>(weak_from_this());
}

void SimDispatch::workEnded() {
  std::lock_guard lock(mutex_);
  if (outstanding_ > 0) --outstanding_;
  changed_.notify_all();
}

void SimDispatch::post(Duration delay, Task task) {
  std::lock_guard lock(mutex_);
  tasks_.emplace(std::make_pair(now_ + delay, sequence_++), std::move(task));
  changed_.notify_all();
}

bool SimDispatch::onLoopThread() const { return std::this_thread::get_id() == loopThread_; }

bool SimDispatch::popDue(Task& task) {
  std::lock_guard lock(mutex_);
  auto it = tasks_.begin();
  if (it == tasks_.end() || it->first.first > now_) return false;
  task = std::move(it->second);
  tasks_.erase(it);
  return true;
}

std::size_t SimDispatch::runReady() {
  std::size_t ran = 0;
  Task task;
  while (popDue(task)) {
    task();
    task = nullptr;
    ++ran;
  }
  return ran;
}

void SimDispatch::advance(Duration delta) {
  delta = std::max(delta, Duration::zero());  // the clock never runs backwards
  Duration target;
  {
    std::lock_guard lock(mutex_);
    target = now_ + delta;
  }
  runReady();
  for (;;) {
    {
      std::lock_guard lock(mutex_);
      auto it = tasks_.begin();
      if (it == tasks_.end() || it->first.first > target) {
        now_ = target;
        break;
      }
      now_ = std::max(now_, it->first.first);
    }
    runReady();
  }
  runReady();
}

bool SimDispatch::settle(std::chrono::milliseconds realTimeout) {
  auto deadline = std::chrono::steady_clock::now() + realTimeout;
  for (;;) {
    runReady();
    std::unique_lock lock(mutex_);
    auto due = [this] { return !tasks_.empty() && tasks_.begin()->first.first <= now_; };
    if (due()) continue;
    if (outstanding_ == 0) return true;
    if (!changed_.wait_until(lock, deadline, [&] { return due() || outstanding_ == 0; })) return false;
  }
}

bool SimDispatch::hasReadyTasks() const {
  std::lock_guard lock(mutex_);
  return !tasks_.empty() && tasks_.begin()->first.first <= now_;
}

std::size_t SimDispatch::outstandingWork() const {
  std::lock_guard lock(mutex_);
  return outstanding_;
}

std::optional<Duration> SimDispatch::nextTimer() const {
  std::lock_guard lock(mutex_);
  if (tasks_.empty()) return std::nullopt;
  return tasks_.begin()->first.first;
}

}  // namespace vantu::sim
