// Virtual time across threads: under a manual clock, moving the main loop's
// clock lets the worker queues run what they were handed before later timers
// fire, and the dispatch timer source fires on its queue at its time.
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <mutex>
#include <string>
#include <vector>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/dispatch/DispatchTimer.h"
#include "platform/runloop/RunLoop.h"
#include "support/LogCapture.h"

namespace quillet::platform {
namespace {

// A main loop on a manual clock for the length of a test, and a record of
// what happened when, kept from any thread.
class VirtualTimeTest : public ::testing::Test {
 protected:
  void SetUp() override { RunLoop::setMain(loop); }
  void TearDown() override { RunLoop::setMain(nullptr); }

  void note(const std::string& what) {
    std::lock_guard lock(mutex);
    events.push_back(what + "@" + std::to_string(static_cast<int>(clock->monotonicSeconds() - start)));
  }
  std::vector<std::string> recorded() {
    std::lock_guard lock(mutex);
    return events;
  }

  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
  std::shared_ptr<RunLoop> loop = std::make_shared<RunLoop>(clock);
  double start = clock->monotonicSeconds();
  std::mutex mutex;
  std::vector<std::string> events;
};

TEST_F(VirtualTimeTest, AnAlarmSetOnAWorkerInsideAWaitFiresAtItsTimeAndInOrder) {
  auto worker = DispatchQueue::makeSerial("com.stikri.mtr.measurement.worker");
  loop->schedule(1.0, [&] {
    note("main");
    worker->async([&] {
      note("worker");
      worker->after(2.0, [&] { note("alarm"); });
    });
  });
  loop->schedule(2.5, [&] { note("before"); });
  loop->schedule(3.5, [&] { note("after"); });
  loop->advance(5.0);
  EXPECT_EQ(recorded(), (std::vector<std::string>{"main@1", "worker@1", "before@2", "alarm@3", "after@3"}));
}

TEST_F(VirtualTimeTest, WorkPostedBackToTheMainLoopRunsBeforeTheClockMoves) {
  auto worker = DispatchQueue::makeSerial("usagelog");
  auto main = DispatchQueue::main();
  worker->async([&] {
    main->async([&] {
      note("back on main");
      worker->async([&] { note("worker again"); });
    });
  });
  loop->schedule(1.0, [&] { note("timer"); });
  loop->advance(1.0);
  EXPECT_EQ(recorded(), (std::vector<std::string>{"back on main@0", "worker again@0", "timer@1"}));
}

TEST_F(VirtualTimeTest, AWorkerThatBlocksDoesNotStopTimeForever) {
  auto worker = DispatchQueue::makeSerial("blocked");
  std::promise<void> release;
  auto released = release.get_future().share();
  worker->async([released] { released.wait(); });
  loop->setWorkerWaitLimit(0.05);
  testing::LogCapture log;
  bool fired = false;
  loop->schedule(1.0, [&] { fired = true; });
  EXPECT_EQ(loop->advance(2.0), 1u);
  EXPECT_TRUE(fired);
  EXPECT_TRUE(log.contains("worker queues still busy"));
  release.set_value();
}

TEST_F(VirtualTimeTest, DispatchTimerFiresOnceOnItsQueueAtItsTime) {
  auto worker = DispatchQueue::makeSerial("timers");
  DispatchTimer timer(worker);
  std::atomic<bool> onQueue{false};
  timer.schedule(3.0, [&] {
    onQueue = worker->isCurrent();
    note("fired");
  });
  EXPECT_TRUE(timer.isPending());
  loop->advance(2.0);
  EXPECT_TRUE(recorded().empty());
  loop->advance(5.0);
  EXPECT_EQ(recorded(), std::vector<std::string>{"fired@3"});
  EXPECT_TRUE(onQueue.load());
  EXPECT_FALSE(timer.isPending());
}

TEST_F(VirtualTimeTest, DispatchTimerCancelledRescheduledOrDestroyedDoesNotFireStale) {
  auto worker = DispatchQueue::makeSerial("timers");
  DispatchTimer replaced(worker);
  replaced.schedule(1.0, [&] { note("first"); });
  replaced.schedule(2.0, [&] { note("second"); });
  DispatchTimer cancelled(worker);
  cancelled.schedule(1.0, [&] { note("cancelled"); });
  cancelled.cancel();
  EXPECT_FALSE(cancelled.isPending());
  {
    DispatchTimer gone(worker);
    gone.schedule(1.0, [&] { note("gone"); });
  }
  loop->advance(3.0);
  EXPECT_EQ(recorded(), std::vector<std::string>{"second@2"});
}

TEST_F(VirtualTimeTest, DispatchTimerCancelledAfterItsLoopTimerFiredStillDoesNotRun) {
  // The fire has been handed to the queue, but the queue is busy; a cancel
  // that lands before the handler starts wins.
  auto worker = DispatchQueue::makeSerial("busy");
  DispatchTimer timer(worker);
  std::promise<void> release;
  auto released = release.get_future().share();
  loop->setWorkerWaitLimit(0.01);
  timer.schedule(1.0, [&] { note("stale"); });
  worker->async([released] { released.wait(); });
  loop->advance(1.0);
  timer.cancel();
  release.set_value();
  worker->sync([] {});
  EXPECT_TRUE(recorded().empty());
}

}  // namespace
}  // namespace quillet::platform
