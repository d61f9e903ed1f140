#include "platform/runloop/RunLoop.h"

#include <gtest/gtest.h>

#include <asio/ip/tcp.hpp>
#include <asio/read.hpp>
#include <asio/write.hpp>
#include <string>
#include <thread>
#include <vector>

namespace quillet::platform {
namespace {

class RunLoopTest : public ::testing::Test {
 protected:
  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
  RunLoop loop{clock};
  std::vector<std::string> fired;

  // Records the name and the clock's time, relative to the start, of each fire.
  std::function<void()> record(std::string name) {
    double start = clock->monotonicSeconds();
    return [this, name, start] {
      fired.push_back(name + "@" + std::to_string(static_cast<int>((clock->monotonicSeconds() - start) * 1000)));
    };
  }
};

TEST_F(RunLoopTest, AdvanceFiresTimersInTimeOrderIncludingOnesScheduledOnTheWay) {
  loop.schedule(3.0, record("c"));
  loop.schedule(1.0, [this] {
    fired.push_back("a@1000");
    // Scheduled inside the window: fires at 1.5 s, before "c".
    loop.schedule(0.5, [this] { fired.push_back("b@1500"); });
    // Past the window: stays pending.
    loop.schedule(10.0, [this] { fired.push_back("late"); });
  });
  loop.schedule(3.0, record("d"));  // same due time as "c": fires after it
  loop.advance(5.0);
  EXPECT_EQ(fired, (std::vector<std::string>{"a@1000", "b@1500", "c@3000", "d@3000"}));
  EXPECT_DOUBLE_EQ(clock->monotonicSeconds(), 1005.0);
}

TEST_F(RunLoopTest, RepeatingTimersKeepTheirGridAndStopWhenCancelled) {
  int ticks = 0;
  TimerId id = loop.scheduleRepeating(0.25, [&] { ++ticks; });
  loop.advance(1.0);
  EXPECT_EQ(ticks, 4);
  EXPECT_TRUE(loop.isPending(id));
  EXPECT_TRUE(loop.cancel(id));
  EXPECT_FALSE(loop.cancel(id));
  loop.advance(1.0);
  EXPECT_EQ(ticks, 4);
}

TEST_F(RunLoopTest, ACallbackCanCancelALaterTimerDueAtTheSameTime) {
  TimerId second = 0;
  loop.schedule(1.0, [&] { loop.cancel(second); });
  second = loop.schedule(1.0, record("second"));
  loop.advance(2.0);
  EXPECT_TRUE(fired.empty());
}

TEST_F(RunLoopTest, DelayedCallsAreCancelledByTargetAndOperation) {
  int a = 0, b = 0;
  const int targetOne = 0, targetTwo = 0;
  loop.performAfterDelay(&targetOne, "sendHeartbeat", 1.0, [&] { ++a; });
  loop.performAfterDelay(&targetOne, "sendHeartbeat", 2.0, [&] { ++a; });
  loop.performAfterDelay(&targetOne, "timeout", 1.0, [&] { ++b; });
  loop.performAfterDelay(&targetTwo, "sendHeartbeat", 1.0, [&] { ++b; });
  EXPECT_EQ(loop.cancelPreviousPerformRequests(&targetOne, "sendHeartbeat"), 2u);
  loop.advance(3.0);
  EXPECT_EQ(a, 0);
  EXPECT_EQ(b, 2);

  loop.performAfterDelay(&targetOne, "x", 1.0, [&] { ++a; });
  loop.performAfterDelay(&targetOne, "y", 1.0, [&] { ++a; });
  EXPECT_EQ(loop.cancelPreviousPerformRequests(&targetOne), 2u);
  EXPECT_EQ(loop.cancelPreviousPerformRequests(&targetOne), 0u);
  loop.advance(3.0);
  EXPECT_EQ(a, 0);
}

TEST_F(RunLoopTest, ManyCancelledTimersLeaveNoTrace) {
  std::vector<TimerId> ids;
  for (int i = 0; i < 20000; ++i) ids.push_back(loop.schedule(1.0 + i * 0.001, [&] { fired.push_back("x"); }));
  for (size_t i = 0; i + 1 < ids.size(); ++i) loop.cancel(ids[i]);
  loop.advance(100.0);
  EXPECT_EQ(fired.size(), 1u);
}

TEST_F(RunLoopTest, WorkPostedFromOtherThreadsRunsOnTheLoopThreadInOrder) {
  std::vector<int> seen;
  std::thread::id loopThread;
  std::thread producer([&] {
    for (int i = 0; i < 1000; ++i) loop.post([&, i] { seen.push_back(i); });
    loop.post([&] { loopThread = std::this_thread::get_id(); });
  });
  ASSERT_TRUE(loop.runUntil([&] { return seen.size() == 1000 && loopThread != std::thread::id(); }, 10.0));
  producer.join();
  EXPECT_EQ(loopThread, std::this_thread::get_id());
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(seen[i], i);
  EXPECT_TRUE(loop.isCurrent());
}

TEST_F(RunLoopTest, SocketReadinessIsDeliveredOnTheLoop) {
  using asio::ip::tcp;
  tcp::acceptor acceptor(loop.io(), tcp::endpoint(asio::ip::make_address("127.0.0.1"), 0));
  tcp::socket server(loop.io());
  tcp::socket client(loop.io());
  bool accepted = false;
  acceptor.async_accept(server, [&](std::error_code ec) { accepted = !ec; });
  client.connect(acceptor.local_endpoint());
  ASSERT_TRUE(loop.runUntil([&] { return accepted; }, 10.0));

  std::string received(5, '\0');
  bool done = false;
  asio::async_read(server, asio::buffer(received), [&](std::error_code ec, size_t) { done = !ec; });
  asio::write(client, asio::buffer(std::string("hello")));
  ASSERT_TRUE(loop.runUntil([&] { return done; }, 10.0));
  EXPECT_EQ(received, "hello");
}

TEST(RunLoopSystemClockTest, StopEndsRunFromAnotherThread) {
  RunLoop loop;
  std::thread stopper([&] { loop.post([&] { loop.stop(); }); });
  loop.run();
  stopper.join();
  SUCCEED();
}

}  // namespace
}  // namespace quillet::platform
