#include "platform/clock/Clock.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace quillet::platform {
namespace {

TEST(ClockTest, ManualClockMovesOnlyWhenTold) {
  ManualClock clock(1'700'000'000.75, 5.0);
  EXPECT_DOUBLE_EQ(clock.wallSeconds(), 1'700'000'000.75);
  EXPECT_EQ(clock.wallWholeSeconds(), 1'700'000'000);
  EXPECT_EQ(clock.wallMilliseconds(), 1'700'000'000'750);
  clock.advance(1.5);
  EXPECT_DOUBLE_EQ(clock.monotonicSeconds(), 6.5);
  EXPECT_EQ(clock.wallWholeSeconds(), 1'700'000'002);
  // A changed wall clock leaves monotonic time alone.
  clock.setWallSeconds(10.0);
  EXPECT_DOUBLE_EQ(clock.monotonicSeconds(), 6.5);
  EXPECT_THROW(clock.advance(-1), std::invalid_argument);
}

TEST(ClockTest, SystemClockIsNearTheMachineTimeAndMonotonic) {
  auto clock = Clock::system();
  double a = clock->monotonicSeconds();
  double b = clock->monotonicSeconds();
  EXPECT_LE(a, b);
  EXPECT_GT(clock->wallSeconds(), 1'600'000'000.0);
  EXPECT_EQ(clock->wallMilliseconds() / 1000, clock->wallWholeSeconds());
}

}  // namespace
}  // namespace quillet::platform
