#include "platform/clock/Clock.h"

#include <chrono>
#include <cmath>
#include <stdexcept>

namespace quillet::platform {

int64_t Clock::wallWholeSeconds() const { return static_cast<int64_t>(std::floor(wallSeconds())); }

int64_t Clock::wallMilliseconds() const { return static_cast<int64_t>(std::floor(wallSeconds() * 1000.0)); }

std::shared_ptr<Clock> Clock::system() {
  static const std::shared_ptr<Clock> clock = std::make_shared<SystemClock>();
  return clock;
}

double SystemClock::wallSeconds() const {
  using namespace std::chrono;
  return duration<double>(system_clock::now().time_since_epoch()).count();
}

double SystemClock::monotonicSeconds() const {
  using namespace std::chrono;
  return duration<double>(steady_clock::now().time_since_epoch()).count();
}

ManualClock::ManualClock(double wallStart, double monotonicStart) : wall_(wallStart), monotonic_(monotonicStart) {}

double ManualClock::wallSeconds() const {
  std::lock_guard lock(mutex_);
  return wall_;
}

double ManualClock::monotonicSeconds() const {
  std::lock_guard lock(mutex_);
  return monotonic_;
}

void ManualClock::advance(double seconds) {
  if (!(seconds >= 0)) throw std::invalid_argument("ManualClock::advance: negative or NaN step");
  std::lock_guard lock(mutex_);
  wall_ += seconds;
  monotonic_ += seconds;
}

void ManualClock::setWallSeconds(double seconds) {
  std::lock_guard lock(mutex_);
  wall_ = seconds;
}

}  // namespace quillet::platform
