#include "platform/dispatch/DispatchQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <vector>

#include "platform/runloop/RunLoop.h"

namespace quillet::platform {
namespace {

TEST(DispatchQueueTest, SerialQueueRunsInOrderOnItsOwnThreadAndKnowsItself) {
  auto queue = DispatchQueue::makeSerial("com.stikri.mtr.measurement.worker");
  std::vector<int> order;
  for (int i = 0; i < 100; ++i) queue->async([&, i] { order.push_back(i); });
  std::string label;
  bool current = false;
  queue->sync([&] {
    label = DispatchQueue::currentLabel();
    current = queue->isCurrent();
  });
  EXPECT_EQ(label, "com.stikri.mtr.measurement.worker");
  EXPECT_TRUE(current);
  EXPECT_FALSE(queue->isCurrent());
  ASSERT_EQ(order.size(), 100u);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(order[i], i);
}

TEST(DispatchQueueTest, SyncOntoItselfRunsInlineInsteadOfHanging) {
  auto queue = DispatchQueue::makeSerial("usagelog");
  bool inner = false;
  queue->sync([&] { queue->sync([&] { inner = true; }); });
  EXPECT_TRUE(inner);
}

TEST(DispatchQueueTest, AQueueWhoseOnlyReferenceIsItsOwnTaskSurvivesTheHandOver) {
  // The posting thread drops the queue as it posts; the task may run and
  // release the last reference before async() has returned.
  for (int i = 0; i < 200; ++i) {
    auto queue = DispatchQueue::makeSerial("handed-over");
    DispatchQueue* raw = queue.get();
    std::promise<void> ran;
    auto done = ran.get_future();
    raw->async([keep = std::move(queue), &ran] { ran.set_value(); });
    done.wait();
  }
}

TEST(DispatchQueueTest, ConcurrentQueueOverlapsWork) {
  auto queue = DispatchQueue::makeConcurrent("processing", 2);
  std::atomic<int> inside{0};
  std::atomic<bool> overlapped{false};
  std::atomic<int> done{0};
  for (int i = 0; i < 2; ++i) {
    queue->async([&] {
      ++inside;
      // Each task waits (bounded) for the other to be inside at the same time.
      for (int spin = 0; spin < 2'000'000 && inside.load() < 2; ++spin) std::this_thread::yield();
      if (inside.load() == 2) overlapped = true;
      ++done;
    });
  }
  queue.reset();  // drains and joins
  EXPECT_EQ(done.load(), 2);
  EXPECT_TRUE(overlapped.load());
}

TEST(DispatchQueueTest, MainQueueAndAfterFollowTheManualClockOfTheMainLoop) {
  auto clock = std::make_shared<ManualClock>();
  auto loop = std::make_shared<RunLoop>(clock);
  RunLoop::setMain(loop);
  auto main = DispatchQueue::main();
  auto worker = DispatchQueue::makeSerial("worker");
  std::atomic<int> fired{0};
  bool onMain = false;
  main->after(2.0, [&] { onMain = main->isCurrent(); });
  worker->after(1.0, [&] { ++fired; });
  loop->advance(1.5);
  worker->sync([] {});  // the hop from the timer to the worker has landed
  EXPECT_EQ(fired.load(), 1);
  EXPECT_FALSE(onMain);
  loop->advance(1.0);
  EXPECT_TRUE(onMain);
  RunLoop::setMain(nullptr);
}

}  // namespace
}  // namespace quillet::platform
