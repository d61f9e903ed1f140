#include "platform/notifications/NotificationCenter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace quillet::platform {
namespace {

TEST(NotificationCenterTest, DeliversInOrderFilteredByNameAndSender) {
  NotificationCenter center;
  int senderA = 0, senderB = 0;
  std::vector<std::string> calls;
  center.addObserver("reg", nullptr,
                     [&](const Notification& n) { calls.push_back("reg-any:" + n.userInfo["t"].string()); });
  center.addObserver("", nullptr, [&](const Notification& n) { calls.push_back("all:" + n.name); });
  center.addObserver("reg", &senderA, [&](const Notification&) { calls.push_back("reg-A"); });
  center.addObserver("other", nullptr, [&](const Notification&) { calls.push_back("other"); });

  center.post("reg", &senderA, Value::dictionary({{"t", "x"}}));
  EXPECT_EQ(calls, (std::vector<std::string>{"reg-any:x", "all:reg", "reg-A"}));
  calls.clear();
  center.post("reg", &senderB, Value::dictionary({{"t", "y"}}));
  EXPECT_EQ(calls, (std::vector<std::string>{"reg-any:y", "all:reg"}));
  calls.clear();
  NotificationCenter::defaultCenter().post("reg");
  EXPECT_TRUE(calls.empty());
}

TEST(NotificationCenterTest, ObserversMayChangeTheListDuringDelivery) {
  NotificationCenter center;
  std::vector<std::string> calls;
  NotificationCenter::ObserverToken self = 0, victim = 0;
  self = center.addObserver("n", nullptr, [&](const Notification&) {
    calls.push_back("self");
    center.removeObserver(self);  // destroys nothing still running
    center.removeObserver(victim);
    center.addObserver("n", nullptr, [&](const Notification&) { calls.push_back("late"); });
  });
  victim = center.addObserver("n", nullptr, [&](const Notification&) { calls.push_back("victim"); });
  center.addObserver("n", nullptr, [&](const Notification&) { calls.push_back("last"); });

  center.post("n");
  EXPECT_EQ(calls, (std::vector<std::string>{"self", "last"}));
  calls.clear();
  center.post("n");
  EXPECT_EQ(calls, (std::vector<std::string>{"last", "late"}));
  center.removeObserver(self);  // twice: nothing happens
  center.removeObserver(12345);
}

TEST(NotificationCenterTest, ConcurrentPostsAndRegistrations) {
  NotificationCenter center;
  std::atomic<int> delivered{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 200; ++i) {
        auto token = center.addObserver("n", nullptr, [&](const Notification&) { ++delivered; });
        center.post("n");
        center.removeObserver(token);
      }
    });
  for (auto& thread : threads) thread.join();
  EXPECT_GE(delivered.load(), 800);  // each post reaches at least its own observer
}

}  // namespace
}  // namespace quillet::platform
