#include "platform/runloop/WorkerActivity.h"

#include <chrono>

namespace quillet::platform {

WorkerActivity& WorkerActivity::shared() {
  // Never destroyed: worker threads may end tasks while the process exits.
  static auto* activity = new WorkerActivity;
  return *activity;
}

void WorkerActivity::began() {
  std::lock_guard lock(mutex_);
  ++outstanding_;
}

void WorkerActivity::ended() {
  {
    std::lock_guard lock(mutex_);
    if (outstanding_ > 0) --outstanding_;
  }
  changed_.notify_all();
}

size_t WorkerActivity::outstanding() const {
  std::lock_guard lock(mutex_);
  return outstanding_;
}

bool WorkerActivity::waitForIdle(double seconds) {
  std::unique_lock lock(mutex_);
  if (outstanding_ == 0) return true;
  changed_.wait_for(lock, std::chrono::duration<double>(seconds));
  return outstanding_ == 0;
}

}  // namespace quillet::platform
