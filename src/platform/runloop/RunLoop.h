#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/clock/Clock.h"
#include "platform/runloop/TimerQueue.h"

namespace asio {
class io_context;
}  // namespace asio

namespace quillet::platform {

// A run loop: the thread that runs it executes posted work, timers, delayed
// calls and socket readiness handlers, one at a time, in a deterministic order
// (timers by due time, then by the order they were scheduled; posted work in
// the order it was posted).
//
// post(), schedule(), cancel() and the perform calls may be made from any
// thread. The run calls (runFor, runUntil, runPending, advance, run) are made
// on one thread, the loop's thread: the first thread that runs it.
//
// Under a ManualClock the loop never waits for time to pass: advance(d) moves
// the clock timer by timer and fires each due timer at its own time,
// including timers that fired callbacks schedule within the window. Before
// each timer fires and before the clock moves, advance() lets the worker
// queues finish what they have been handed (see WorkerActivity) and runs the
// work they post back to this loop, so virtual time stays deterministic when
// work crosses threads: a timer a worker sets inside the window is set at the
// virtual time the worker was handed its task, and fires in order.
class RunLoop {
 public:
  explicit RunLoop(std::shared_ptr<Clock> clock = Clock::system());
  ~RunLoop();
  RunLoop(const RunLoop&) = delete;
  RunLoop& operator=(const RunLoop&) = delete;

  // The process's main loop. Made on first use with the system clock unless
  // setMain() gave one; the app and tests that need a manual main loop call
  // setMain() before anything uses it.
  static RunLoop& main();
  static std::shared_ptr<RunLoop> mainShared();
  static void setMain(std::shared_ptr<RunLoop> loop);
  // The loop that is running on the calling thread, or nullptr.
  static RunLoop* current();

  const std::shared_ptr<Clock>& clock() const { return clock_; }
  // The loop's clock when it is a ManualClock, else nullptr.
  ManualClock* manualClock() const { return manual_; }
  // True on the thread that runs (or last ran) this loop.
  bool isCurrent() const;

  // Runs `task` on the loop's thread, after what was posted before it.
  void post(std::function<void()> task);

  // Runs `task` once, `delaySeconds` from now (monotonic); returns its handle.
  TimerId schedule(double delaySeconds, std::function<void()> task);
  // Runs `task` every `intervalSeconds` (at least 0.1 ms), first after one
  // interval. Fire times keep to the grid; missed fires are skipped.
  TimerId scheduleRepeating(double intervalSeconds, std::function<void()> task);
  // Cancels a pending timer; true when it was pending.
  bool cancel(TimerId id);
  bool isPending(TimerId id) const;

  // A delayed call in the form of performSelector:afterDelay: - remembered by
  // its target and operation name so that it can be cancelled by them.
  TimerId performAfterDelay(const void* target, std::string operation, double delaySeconds, std::function<void()> task);
  // Cancels the pending delayed calls of `target` with that operation name
  // (cancelPreviousPerformRequestsWithTarget:selector:); returns how many.
  size_t cancelPreviousPerformRequests(const void* target, std::string_view operation);
  // Cancels every pending delayed call of `target`; returns how many.
  size_t cancelPreviousPerformRequests(const void* target);

  // Runs for `seconds` of the loop's clock. Under a ManualClock this is advance(seconds).
  void runFor(double seconds);
  // Runs until `predicate` is true (checked after each unit of work) or the
  // time-out passes; returns the predicate's last answer. Under a ManualClock
  // the clock does not move: the loop waits for real I/O and posted work,
  // with the time-out counted in real time.
  bool runUntil(const std::function<bool()>& predicate, double timeoutSeconds);
  // Runs until stop() is called.
  void run();
  // Makes run(), runFor() and runUntil() return after the current unit of work. Any thread.
  void stop();
  // Runs posted work, ready I/O handlers and due timers without waiting;
  // returns how many units of work ran.
  size_t runPending();
  // ManualClock only: moves the clock forward by `seconds`, firing due timers
  // in time order, with the worker queues settled before each timer and each
  // move of the clock. Returns how many timers fired.
  size_t advance(double seconds);
  // Lets the worker queues finish their tasks, running what they post to this
  // loop meanwhile; waits at most the worker wait limit of real time (a task
  // that blocks for longer is logged once and left running). True when the
  // workers went idle. Call on the loop's thread.
  bool settleWorkers();
  // The longest real time settleWorkers() waits (10 s unless set).
  void setWorkerWaitLimit(double seconds) { workerWaitLimit_ = seconds; }

  // Socket readiness: asio objects made on this context deliver their
  // handlers on the loop's thread while it runs. Callers include
  // <asio/io_context.hpp>; the loop keeps asio out of its header so that the
  // many files that only post work and set timers do not compile it.
  asio::io_context& io();

 private:
  class CurrentScope;
  struct Io;

  size_t runPosted();
  size_t fireDueTimers();
  bool fireOneDueTimer();
  bool settleWorkersUntil(double realDeadline);
  size_t pollIo();
  void waitForWork(double maxSeconds);
  void wake();
  void wakeIfWaiting();
  void claimThread();

  std::shared_ptr<Clock> clock_;
  ManualClock* manual_ = nullptr;
  std::unique_ptr<Io> io_;

  mutable std::mutex postedMutex_;
  std::deque<std::function<void()>> posted_;
  std::atomic<bool> waiting_{false};
  std::atomic<bool> stopRequested_{false};
  std::atomic<std::thread::id> thread_{};

  double workerWaitLimit_ = 10.0;
  bool workerWaitReported_ = false;

  mutable std::mutex timerMutex_;
  TimerQueue timers_;
};

}  // namespace quillet::platform
