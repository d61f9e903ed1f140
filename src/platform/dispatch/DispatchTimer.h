#pragma once

#include <functional>
#include <memory>

#include "platform/runloop/TimerQueue.h"

namespace quillet::platform {

class DispatchQueue;

// A cancellable one-shot timer whose handler runs on a dispatch queue (the
// phone's dispatch timer source), beside the run loop's delayed calls. It is
// timed by the queue's timer loop (DispatchQueue::timerLoop()), so a
// ManualClock drives it. Scheduling again replaces the pending fire.
//
// Thread-safe: schedule, cancel and isPending may be called from any thread.
// A handler that has not started when cancel() returns (or when the timer is
// destroyed) never runs; one that has started runs to its end. The timer
// keeps its queue alive while a fire is pending.
class DispatchTimer {
 public:
  explicit DispatchTimer(std::shared_ptr<DispatchQueue> queue);
  ~DispatchTimer();
  DispatchTimer(const DispatchTimer&) = delete;
  DispatchTimer& operator=(const DispatchTimer&) = delete;

  // Runs `handler` on the queue `seconds` from now, once.
  void schedule(double seconds, std::function<void()> handler);
  void cancel();
  // True from schedule() until the handler starts or the timer is cancelled.
  bool isPending() const;

 private:
  struct State;

  std::shared_ptr<DispatchQueue> queue_;
  std::shared_ptr<State> state_;
};

}  // namespace quillet::platform
