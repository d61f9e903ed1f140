#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

namespace quillet::platform {

// The one source of time. Wall time is seconds since 1970; monotonic time
// never goes back and is what timers are measured against. Implementations
// are thread-safe.
class Clock {
 public:
  virtual ~Clock() = default;

  // Seconds since 1970 with a fraction.
  virtual double wallSeconds() const = 0;
  // Seconds from an arbitrary origin; never decreases.
  virtual double monotonicSeconds() const = 0;

  // Whole seconds since 1970 (rounded down).
  int64_t wallWholeSeconds() const;
  // Milliseconds since 1970 (rounded down).
  int64_t wallMilliseconds() const;

  // The process's real clock, shared.
  static std::shared_ptr<Clock> system();
};

// Time as the machine keeps it.
class SystemClock final : public Clock {
 public:
  double wallSeconds() const override;
  double monotonicSeconds() const override;
};

// Time that moves only when told. Wall and monotonic time move together.
// A run loop driven by this clock fires its timers from RunLoop::advance.
class ManualClock final : public Clock {
 public:
  explicit ManualClock(double wallStart = 1'800'000'000.0, double monotonicStart = 1000.0);

  double wallSeconds() const override;
  double monotonicSeconds() const override;

  // Moves both times forward by `seconds` (>= 0).
  void advance(double seconds);
  // Sets the wall time only (a user changing the phone's clock).
  void setWallSeconds(double seconds);

 private:
  mutable std::mutex mutex_;
  double wall_;
  double monotonic_;
};

}  // namespace quillet::platform
