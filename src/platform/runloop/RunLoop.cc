#include "platform/runloop/RunLoop.h"

#include <algorithm>
#include <chrono>
#include <sstream>
#include <stdexcept>

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>

#include "platform/log/Log.h"
#include "platform/runloop/WorkerActivity.h"
#include "platform/support/SharedSlot.h"

namespace quillet::platform {
namespace {

constexpr double kMinimumInterval = 0.0001;
// Longest single wait, so that a stop() from a signal handler-like path is seen.
constexpr double kLongestWait = 1.0;

thread_local RunLoop* currentLoop = nullptr;

}  // namespace

// Marks the loop as the calling thread's current loop while it runs.
class RunLoop::CurrentScope {
 public:
  explicit CurrentScope(RunLoop* loop) : previous_(currentLoop) {
    loop->claimThread();
    currentLoop = loop;
  }
  ~CurrentScope() { currentLoop = previous_; }

 private:
  RunLoop* previous_;
};

// The I/O context, kept busy by a work guard so that it never runs out of work between waits.
struct RunLoop::Io {
  asio::io_context context;
  asio::executor_work_guard<asio::io_context::executor_type> work{context.get_executor()};
};

RunLoop::RunLoop(std::shared_ptr<Clock> clock)
    : clock_(std::move(clock)), manual_(dynamic_cast<ManualClock*>(clock_.get())), io_(std::make_unique<Io>()) {}

RunLoop::~RunLoop() = default;

asio::io_context& RunLoop::io() { return io_->context; }

RunLoop& RunLoop::main() { return *mainShared(); }

// The slot is never destroyed: threads that outlive main() (the network thread) may still ask for the main loop.
std::shared_ptr<RunLoop> RunLoop::mainShared() {
  return SharedSlot<RunLoop>::get([] { return std::make_shared<RunLoop>(); });
}

void RunLoop::setMain(std::shared_ptr<RunLoop> loop) { SharedSlot<RunLoop>::set(std::move(loop)); }

RunLoop* RunLoop::current() { return currentLoop; }

bool RunLoop::isCurrent() const { return thread_.load() == std::this_thread::get_id(); }

void RunLoop::claimThread() { thread_.store(std::this_thread::get_id()); }

void RunLoop::post(std::function<void()> task) {
  bool first;
  {
    std::lock_guard lock(postedMutex_);
    first = posted_.empty();
    posted_.push_back(std::move(task));
  }
  if (first) wakeIfWaiting();
}

TimerId RunLoop::schedule(double delaySeconds, std::function<void()> task) {
  TimerId id;
  {
    std::lock_guard lock(timerMutex_);
    id = timers_.add(clock_->monotonicSeconds() + std::max(0.0, delaySeconds), 0, std::move(task));
  }
  if (!isCurrent()) wake();
  return id;
}

TimerId RunLoop::scheduleRepeating(double intervalSeconds, std::function<void()> task) {
  double interval = std::max(kMinimumInterval, intervalSeconds);
  TimerId id;
  {
    std::lock_guard lock(timerMutex_);
    id = timers_.add(clock_->monotonicSeconds() + interval, interval, std::move(task));
  }
  if (!isCurrent()) wake();
  return id;
}

bool RunLoop::cancel(TimerId id) {
  std::lock_guard lock(timerMutex_);
  return timers_.cancel(id);
}

bool RunLoop::isPending(TimerId id) const {
  std::lock_guard lock(timerMutex_);
  return timers_.contains(id);
}

TimerId RunLoop::performAfterDelay(const void* target, std::string operation, double delaySeconds,
                                   std::function<void()> task) {
  TimerId id;
  {
    std::lock_guard lock(timerMutex_);
    id = timers_.add(clock_->monotonicSeconds() + std::max(0.0, delaySeconds), 0, std::move(task), target,
                     std::move(operation));
  }
  if (!isCurrent()) wake();
  return id;
}

size_t RunLoop::cancelPreviousPerformRequests(const void* target, std::string_view operation) {
  std::lock_guard lock(timerMutex_);
  return timers_.cancelByTarget(target, operation);
}

size_t RunLoop::cancelPreviousPerformRequests(const void* target) {
  std::lock_guard lock(timerMutex_);
  return timers_.cancelByTarget(target, std::nullopt);
}

size_t RunLoop::runPosted() {
  std::deque<std::function<void()>> batch;
  {
    std::lock_guard lock(postedMutex_);
    batch.swap(posted_);
  }
  for (auto& task : batch) task();
  return batch.size();
}

// Fires the timers that are due now, earliest first, one at a time so that a
// callback can still cancel a later one. Timers that these callbacks schedule
// wait for the next pass, so a timer that keeps rescheduling itself for "now"
// cannot starve the loop.
size_t RunLoop::fireDueTimers() {
  double now = clock_->monotonicSeconds();
  uint64_t limit;
  {
    std::lock_guard lock(timerMutex_);
    limit = timers_.sequenceMark();
  }
  size_t count = 0;
  for (;;) {
    std::optional<TimerQueue::Due> fired;
    {
      std::lock_guard lock(timerMutex_);
      fired = timers_.popDue(now, limit);
    }
    if (!fired) return count;
    (*fired->task)();
    ++count;
  }
}

size_t RunLoop::pollIo() {
  if (io_->context.stopped()) io_->context.restart();
  return io_->context.poll();
}

void RunLoop::wakeIfWaiting() {
  if (waiting_.load()) asio::post(io_->context, [] {});
}

// A timer set from another thread may be due before the wait the loop is in ends.
void RunLoop::wake() {
  asio::post(io_->context, [] {});
}

void RunLoop::waitForWork(double maxSeconds) {
  {
    std::lock_guard lock(postedMutex_);
    if (!posted_.empty()) return;
  }
  waiting_.store(true);
  // Work posted between the check above and the flag is seen by this second look.
  bool pending;
  {
    std::lock_guard lock(postedMutex_);
    pending = !posted_.empty();
  }
  if (!pending && maxSeconds > 0) {
    if (io_->context.stopped()) io_->context.restart();
    auto wait = std::chrono::duration<double>(std::min(maxSeconds, kLongestWait));
    io_->context.run_one_for(std::chrono::duration_cast<std::chrono::nanoseconds>(wait));
  }
  waiting_.store(false);
}

size_t RunLoop::runPending() {
  CurrentScope scope(this);
  size_t ran = runPosted();
  ran += pollIo();
  ran += fireDueTimers();
  return ran;
}

// Fires the earliest timer that is due now, if any.
bool RunLoop::fireOneDueTimer() {
  std::optional<TimerQueue::Due> fired;
  {
    std::lock_guard lock(timerMutex_);
    fired = timers_.popDue(clock_->monotonicSeconds());
  }
  if (!fired) return false;
  (*fired->task)();
  return true;
}

bool RunLoop::settleWorkers() {
  CurrentScope scope(this);
  return settleWorkersUntil(Clock::system()->monotonicSeconds() + workerWaitLimit_);
}

bool RunLoop::settleWorkersUntil(double realDeadline) {
  WorkerActivity& workers = WorkerActivity::shared();
  const Clock& realClock = *Clock::system();
  for (;;) {
    size_t ran = runPosted();
    ran += pollIo();
    if (ran > 0) continue;
    // Short waits, so that work the workers post back here is run promptly.
    if (workers.outstanding() == 0 || workers.waitForIdle(0.001)) {
      std::lock_guard lock(postedMutex_);
      if (posted_.empty()) return true;
      continue;
    }
    if (realClock.monotonicSeconds() >= realDeadline) {
      if (!workerWaitReported_) {
        workerWaitReported_ = true;
        std::ostringstream message;
        message << "RunLoop: worker queues still busy after " << workerWaitLimit_
                << " s; virtual time moves on without them";
        Log::write(message.str());
      }
      return false;
    }
  }
}

size_t RunLoop::advance(double seconds) {
  if (manual_ == nullptr) throw std::logic_error("RunLoop::advance needs a ManualClock");
  CurrentScope scope(this);
  const double target = manual_->monotonicSeconds() + std::max(0.0, seconds);
  // One real-time allowance for the whole move, so that a blocked worker
  // delays it once, not once a timer.
  const double realDeadline = Clock::system()->monotonicSeconds() + workerWaitLimit_;
  size_t fired = 0;
  for (;;) {
    settleWorkersUntil(realDeadline);
    if (fireOneDueTimer()) {
      ++fired;
      continue;
    }
    std::optional<double> next;
    {
      std::lock_guard lock(timerMutex_);
      next = timers_.nextDue();
    }
    if (!next || *next > target) break;
    const double now = manual_->monotonicSeconds();
    if (*next > now) manual_->advance(*next - now);
  }
  const double now = manual_->monotonicSeconds();
  if (target > now) manual_->advance(target - now);
  // Work that falls due exactly at the end of the window.
  for (;;) {
    settleWorkersUntil(realDeadline);
    if (!fireOneDueTimer()) return fired;
    ++fired;
  }
}

void RunLoop::runFor(double seconds) {
  if (manual_ != nullptr) {
    advance(seconds);
    return;
  }
  runUntil([] { return false; }, seconds);
}

bool RunLoop::runUntil(const std::function<bool()>& predicate, double timeoutSeconds) {
  CurrentScope scope(this);
  stopRequested_.store(false);
  // Under a ManualClock the time-out is real time, since the loop's clock does not move here.
  const Clock& timeoutClock = manual_ != nullptr ? *Clock::system() : *clock_;
  double deadline = timeoutClock.monotonicSeconds() + timeoutSeconds;
  for (;;) {
    if (predicate()) return true;
    if (stopRequested_.exchange(false)) return predicate();
    size_t ran = runPosted();
    ran += pollIo();
    ran += fireDueTimers();
    if (predicate()) return true;
    double now = timeoutClock.monotonicSeconds();
    if (now >= deadline) return false;
    if (ran > 0) continue;
    double wait = deadline - now;
    if (manual_ == nullptr) {
      std::lock_guard lock(timerMutex_);
      if (auto next = timers_.nextDue()) wait = std::min(wait, std::max(0.0, *next - now));
    }
    waitForWork(wait);
  }
}

void RunLoop::run() {
  runUntil([] { return false; }, 1e18);
}

void RunLoop::stop() {
  stopRequested_.store(true);
  asio::post(io_->context, [] {});
}

}  // namespace quillet::platform
