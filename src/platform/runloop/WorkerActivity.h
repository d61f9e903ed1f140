#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace quillet::platform {

// Counts, process-wide, the tasks handed to worker threads (the serial and
// concurrent dispatch queues) that have not finished yet. A run loop under a
// manual clock waits for this count to reach zero before it moves time on, so
// that what a worker queue has been handed runs at the virtual time it was
// handed at, and the timers it sets fall due in order.
//
// Thread-safe. The queues call began() when a task is queued and ended() when
// it has run; every began() is matched by one ended().
class WorkerActivity {
 public:
  static WorkerActivity& shared();

  void began();
  void ended();
  size_t outstanding() const;

  // Waits up to `seconds` of real time for the count to reach zero (or for
  // any task to end); true when it is zero.
  bool waitForIdle(double seconds);

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  size_t outstanding_ = 0;
};

}  // namespace quillet::platform
