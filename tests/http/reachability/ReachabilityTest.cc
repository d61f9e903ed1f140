#include <gtest/gtest.h>

#include "http/reachability/NKNetworkReachabilityManager.h"
#include "http/reachability/Reachability.h"
#include "platform/notifications/NotificationCenter.h"
#include "platform/runloop/RunLoop.h"
#include "support/LogCapture.h"

namespace quillet::http {
namespace {

using namespace platform;
using Manager = NKNetworkReachabilityManager;

constexpr ReachabilityFlags R = kReachabilityReachable;
constexpr ReachabilityFlags c = kReachabilityConnectionRequired;
constexpr ReachabilityFlags C = kReachabilityConnectionOnTraffic;
constexpr ReachabilityFlags i = kReachabilityInterventionRequired;
constexpr ReachabilityFlags D = kReachabilityConnectionOnDemand;
constexpr ReachabilityFlags W = kReachabilityIsWWAN;
constexpr ReachabilityFlags d = kReachabilityIsDirect;

TEST(ReachabilityTest, EachNumberingKeepsItsOwnRule) {
  struct Case {
    ReachabilityFlags flags;
    int networkStatus;  // Reachability: WiFi 1, WWAN 2
    int managerStatus;  // manager: WWAN 1, WiFi 2
  };
  const Case cases[] = {
      {0, 0, 0},         {W, 0, 0},         {R, 1, 2},         {R | W, 2, 1},         {R | c | W, 2, 0},
      {R | c, 0, 0},     {R | c | D, 1, 2}, {R | c | C, 1, 2}, {R | c | D | i, 0, 0}, {R | c | C | W, 2, 1},
      {R | C | i, 1, 2}, {R | d, 1, 2},
  };
  testing::LogCapture log;
  for (const Case& item : cases) {
    EXPECT_EQ(Reachability::networkStatusForFlags(item.flags), item.networkStatus) << item.flags;
    EXPECT_EQ(Manager::statusForFlags(item.flags), item.managerStatus) << item.flags;
  }
  EXPECT_EQ(Reachability::localWiFiStatusForFlags(R | d), Reachability::ReachableViaWiFi);
  EXPECT_EQ(Reachability::localWiFiStatusForFlags(R), Reachability::NotReachable);
  EXPECT_EQ(Reachability::localWiFiStatusForFlags(d), Reachability::NotReachable);
}

TEST(ReachabilityTest, DebugLineNamesEveryFlag) {
  EXPECT_EQ(Reachability::flagStatusLine(R | c | d | W, "networkStatusForFlags"),
            "Reachability Flag Status: WR -c----d networkStatusForFlags\n");
  EXPECT_EQ(Reachability::flagStatusLine(0xffffffff, "localWiFiStatusForFlags"),
            "Reachability Flag Status: WR tcCiDld localWiFiStatusForFlags\n");
  testing::LogCapture log;
  Reachability::localWiFiStatusForFlags(0);
  EXPECT_EQ(log.messages(), std::vector<std::string>{"Reachability Flag Status: -- ------- localWiFiStatusForFlags"});
}

TEST(ReachabilityTest, CurrentStatusFollowsTheOverride) {
  testing::LogCapture log;
  auto internet = Reachability::reachabilityForInternetConnection();
  ASSERT_TRUE(internet);
  ReachabilitySource::setOverride(ReachabilityOverride::WiFi);
  EXPECT_EQ(internet->currentReachabilityStatus(), Reachability::ReachableViaWiFi);
  ReachabilitySource::setOverride(ReachabilityOverride::Cellular);
  EXPECT_EQ(internet->currentReachabilityStatus(), Reachability::ReachableViaWWAN);
  ReachabilitySource::setOverride(ReachabilityOverride::None);
  EXPECT_EQ(internet->currentReachabilityStatus(), Reachability::NotReachable);
  ReachabilitySource::setOverride(ReachabilityOverride::Automatic);

  EXPECT_EQ(Reachability(nullptr).currentReachabilityStatus(), Reachability::NotReachable);
  EXPECT_FALSE(Reachability::reachabilityWithAddress("not an address"));
  EXPECT_FALSE(Reachability::reachabilityWithHostName(""));
}

TEST(NKNetworkReachabilityManagerTest, MonitoringPostsChangesOnTheMainQueue) {
  auto loop = std::make_shared<RunLoop>(std::make_shared<ManualClock>());
  RunLoop::setMain(loop);
  ReachabilitySource::setOverride(ReachabilityOverride::Cellular);
  auto manager = Manager::managerForAddress("0.0.0.0");
  ASSERT_TRUE(manager);
  EXPECT_EQ(manager->localizedNetworkReachabilityStatusString(), "Unknown");

  std::vector<int> seen;
  std::vector<Value> posted;
  manager->setReachabilityStatusChangeBlock([&](Manager::NKNetworkReachabilityStatus status) {
    EXPECT_TRUE(loop->isCurrent());
    seen.push_back(status);
  });
  auto token = NotificationCenter::defaultCenter().addObserver(
      "com.kriozugin.networking.reachability.change", manager.get(),
      [&](const Notification& note) { posted.push_back(note.userInfo["NetKitReachabilityNotificationStatusItem"]); });
  manager->startMonitoring();
  ASSERT_TRUE(loop->runUntil([&] { return !seen.empty(); }, 10));
  EXPECT_TRUE(manager->isReachableViaWWAN());
  EXPECT_EQ(manager->localizedNetworkReachabilityStatusString(), "Reachable via WWAN");

  ReachabilitySource::setOverride(ReachabilityOverride::WiFi);
  ASSERT_TRUE(loop->runUntil([&] { return seen.back() == 2; }, 10));
  EXPECT_TRUE(manager->isReachableViaWiFi());
  EXPECT_EQ(posted.back(), Value(2));
  ReachabilitySource::setOverride(ReachabilityOverride::None);
  ASSERT_TRUE(loop->runUntil([&] { return seen.back() == 0; }, 10));
  EXPECT_FALSE(manager->isReachable());
  EXPECT_EQ(manager->localizedNetworkReachabilityStatusString(), "Not Reachable");

  manager->stopMonitoring();
  NotificationCenter::defaultCenter().removeObserver(token);
  ReachabilitySource::setOverride(ReachabilityOverride::Automatic);
}

}  // namespace
}  // namespace quillet::http
