#include "platform/reachability/ReachabilitySource.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/runloop/RunLoop.h"

namespace quillet::platform {
namespace {

class ReachabilitySourceTest : public ::testing::Test {
 protected:
  ~ReachabilitySourceTest() override {
    ReachabilitySource::setOverride(ReachabilityOverride::Automatic);
    ReachabilitySource::setSnapshotProvider({});
  }

  void record(ReachabilitySource& source, double poll = ReachabilitySource::kDefaultPollSeconds) {
    source.schedule(
        loop,
        [this](ReachabilityFlags flags) {
          seen.push_back(flags);
          onLoopThread = onLoopThread && loop.isCurrent();
        },
        poll);
  }

  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
  RunLoop loop{clock};
  std::vector<ReachabilityFlags> seen;
  bool onLoopThread = true;
};

TEST_F(ReachabilitySourceTest, OverrideChangesArePostedToTheLoopOnlyWhenFlagsChange) {
  loop.runPending();  // makes this thread the loop's thread
  ReachabilitySource::setOverride(ReachabilityOverride::None);
  auto source = ReachabilitySource::forInternet();
  record(*source);
  EXPECT_EQ(source->flags(), 0u);

  ReachabilitySource::setOverride(ReachabilityOverride::WiFi);
  EXPECT_TRUE(seen.empty());  // posted, not called from inside setOverride
  loop.runPending();
  std::thread([] { ReachabilitySource::setOverride(ReachabilityOverride::Cellular); }).join();
  loop.runPending();
  ReachabilitySource::setOverride(ReachabilityOverride::None);
  ReachabilitySource::setOverride(ReachabilityOverride::None);
  loop.runPending();
  EXPECT_EQ(seen,
            (std::vector<ReachabilityFlags>{kReachabilityReachable, kReachabilityReachable | kReachabilityIsWWAN, 0u}));
  EXPECT_TRUE(onLoopThread);

  // The override applies to every target, loopback included.
  EXPECT_EQ(ReachabilitySource::forAddress("127.0.0.1")->flags(), 0u);
  source->unschedule();
  ReachabilitySource::setOverride(ReachabilityOverride::WiFi);
  loop.runPending();
  EXPECT_EQ(seen.size(), 3u);
}

TEST_F(ReachabilitySourceTest, MachineChangesArriveThroughThePollTimer) {
  bool linkUp = true;
  ReachabilitySource::setSnapshotProvider([&] {
    NetworkInterface eth{"eth0", linkUp, false, {asio::ip::make_address("192.0.2.10")}};
    return NetworkSnapshot::fromTables({eth}, "eth0\t00000000\t010200C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n", "");
  });
  auto source = ReachabilitySource::forHostName("news.example");
  record(*source, 2.0);
  EXPECT_EQ(source->flags(), kReachabilityReachable);
  linkUp = false;
  loop.advance(1.9);
  EXPECT_TRUE(seen.empty());
  loop.advance(0.2);
  EXPECT_EQ(seen, std::vector<ReachabilityFlags>{0u});
  linkUp = true;
  loop.advance(2.0);
  EXPECT_EQ(seen, (std::vector<ReachabilityFlags>{0u, kReachabilityReachable}));
  source.reset();  // destruction unschedules
  linkUp = false;
  loop.advance(10);
  EXPECT_EQ(seen.size(), 2u);
}

TEST_F(ReachabilitySourceTest, TargetsOfTheRealMachine) {
  constexpr ReachabilityFlags kLocal = kReachabilityReachable | kReachabilityIsLocalAddress | kReachabilityIsDirect;
  EXPECT_EQ(ReachabilitySource::forAddress("127.0.0.1")->flags(), kLocal);
  EXPECT_EQ(ReachabilitySource::forHostName("localhost")->flags(), kLocal);
  EXPECT_EQ(ReachabilitySource::forHostName("no-such-host.invalid")->flags(),
            ReachabilitySource::forInternet()->flags());
  ASSERT_NE(ReachabilitySource::forAddress("169.254.0.0"), nullptr);
  EXPECT_EQ(ReachabilitySource::forAddress("not an address"), nullptr);
  EXPECT_EQ(ReachabilitySource::forHostName(""), nullptr);
}

}  // namespace
}  // namespace quillet::platform
