// The shell under a ManualClock main loop, with service doubles.
#include <gtest/gtest.h>

#include <memory>

#include "news/app/AppDelegate.h"
#include "news/app/MainStoryboard.h"
#include "news/app/ShellDoubles.h"
#include "news/store/NewsDatabaseFile.h"
#include "platform/runloop/RunLoop.h"
#include "platform/ui/Application.h"
#include "platform/ui/ImageView.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::news {
namespace {

using platform::Value;

class AppDelegateTest : public ::testing::Test {
 protected:
  AppDelegateTest()
      : fileSystem_(std::make_shared<platform::FileSystem>(
            dir_.path(), platform::FileSystem::Options{NewsDatabaseFile::builtResourceDirectory()})),
        defaults_(*fileSystem_, "test"),
        loop_(std::make_shared<platform::RunLoop>(std::make_shared<platform::ManualClock>())) {
    platform::RunLoop::setMain(loop_);
    msg_ = std::make_shared<news::testing::FakeMSGService>(&calls_);
    pubSub_ = std::make_shared<news::testing::FakePubSub>(&calls_);
    iid_ = std::make_shared<news::testing::FakeInstanceIDService>(&calls_);
    makeApp();
  }
  ~AppDelegateTest() override { platform::RunLoop::setMain(nullptr); }

  // A fresh process over the same data root.
  void makeApp() {
    app_ = std::make_shared<platform::Application>(std::make_shared<platform::UiEvents>());
    delegate_ = std::make_shared<AppDelegate>(
        AppServices{std::make_shared<news::testing::FakeContext>(), msg_, pubSub_, iid_}, fileSystem_, defaults_,
        center_, MainStoryboard::make(AppEnvironment{&defaults_, loop_.get(), fileSystem_}));
    app_->setDelegate(delegate_);
  }

  std::string top() {
    auto screen = app_->window().topScreen();
    return screen ? screen->identifier() : "";
  }

  ::quillet::testing::LogCapture log_;
  ::quillet::testing::TempDir dir_;
  std::shared_ptr<platform::FileSystem> fileSystem_;
  platform::UserDefaults defaults_;
  platform::NotificationCenter center_;
  std::shared_ptr<platform::RunLoop> loop_;
  std::vector<std::string> calls_;
  std::shared_ptr<news::testing::FakeMSGService> msg_;
  std::shared_ptr<news::testing::FakePubSub> pubSub_;
  std::shared_ptr<news::testing::FakeInstanceIDService> iid_;
  std::shared_ptr<platform::Application> app_;
  std::shared_ptr<AppDelegate> delegate_;
};

TEST_F(AppDelegateTest, FirstLaunchShowsSplashThenOnboardingAndSecondGoesToTheFeed) {
  app_->launch();
  EXPECT_EQ(top(), "SplashVC");
  EXPECT_EQ(defaults_.integerForKey("LaunchAmounts"), 1);
  auto splash = app_->window().topScreen();
  EXPECT_FALSE(splash->view()->isHidden());
  EXPECT_EQ(splash->outlet<platform::ImageView>("imgBackground")->image(), "Splash");
  EXPECT_TRUE(fileSystem_->fileExists(fileSystem_->documentsDirectory() / "News.sqlite"));
  EXPECT_EQ(app_->notificationSettingsTypes(), 7);
  EXPECT_TRUE(app_->isRegisteredForRemoteNotifications());

  loop_->advance(3.9);
  EXPECT_EQ(top(), "SplashVC");
  loop_->advance(0.1);
  EXPECT_EQ(top(), "CategoryVC");
  EXPECT_EQ(app_->window().stackIdentifiers(), (std::vector<std::string>{"SplashVC", "CategoryVC"}));

  // Onboarding left unfinished: the next launch still goes to the feed.
  makeApp();
  app_->launch();
  EXPECT_EQ(top(), "HomeVC");
  EXPECT_EQ(defaults_.integerForKey("LaunchAmounts"), 2);
  loop_->advance(5);
  EXPECT_EQ(top(), "HomeVC");
}

TEST_F(AppDelegateTest, BadgeCountsBothPushFormsAndActivationClearsIt) {
  app_->launch();
  app_->deliverRemoteNotification(Value::dictionary({{"post_id", 5}}), true);
  EXPECT_EQ(app_->applicationIconBadgeNumber(), 1);
  app_->deliverRemoteNotification(Value::dictionary({{"aps", "x"}}), false);
  EXPECT_EQ(app_->applicationIconBadgeNumber(), 2);
  EXPECT_EQ(defaults_.integerForKey("badgeCount"), 2);
  EXPECT_TRUE(log_.contains("Notification received: "));

  app_->becomeActive();
  EXPECT_EQ(app_->applicationIconBadgeNumber(), 0);
  EXPECT_EQ(defaults_.integerForKey("badgeCount"), 0);
  app_->setApplicationIconBadgeNumber(9);
  app_->enterBackground();
  EXPECT_EQ(app_->applicationIconBadgeNumber(), 0);
}

TEST_F(AppDelegateTest, PushReplacesTheStackWithAFreshFeedAndStoresTheStory) {
  app_->launch();
  loop_->advance(4);
  ASSERT_EQ(top(), "CategoryVC");
  app_->deliverRemoteNotification(Value::dictionary({{"post_id", 42}}), true);
  EXPECT_EQ(app_->window().stackIdentifiers(), std::vector<std::string>{"HomeVC"});
  EXPECT_EQ(defaults_.stringForKey("NewsID"), "42");
  EXPECT_EQ(calls_.back(), "msg.message");

  app_->deliverRemoteNotification(Value::dictionary({{"other", 1}}), true);
  EXPECT_EQ(defaults_.stringForKey("NewsID"), "(null)");

  // The plain form neither routes nor tells messaging.
  auto before = app_->window().topScreen();
  calls_.clear();
  app_->deliverRemoteNotification(Value::dictionary({{"post_id", "7"}}), false);
  EXPECT_EQ(app_->window().topScreen(), before);
  EXPECT_EQ(defaults_.stringForKey("NewsID"), "(null)");
  EXPECT_TRUE(calls_.empty());
}

TEST_F(AppDelegateTest, ColdStartPushRoutesBeforeMessagingStarts) {
  app_->launch(Value::dictionary(
      {{"UIApplicationLaunchOptionsRemoteNotificationKey", Value::dictionary({{"post_id", "abc"}})}}));
  EXPECT_EQ(app_->window().stackIdentifiers(), std::vector<std::string>{"HomeVC"});
  EXPECT_EQ(defaults_.stringForKey("NewsID"), "abc");
  EXPECT_EQ(calls_, std::vector<std::string>{"msg.start"});
}

TEST_F(AppDelegateTest, DeviceTokenIsCleanedAndTheTokenSubscribesAfterConnect) {
  iid_->token = "reg-token-1";
  app_->launch();
  Value::Bytes raw{0x0a, 0x1b, 0x2c, 0x3d, 0x4e, 0x5f, 0x60, 0x71, 0x82};
  int posted = 0;
  center_.addObserver("onRegistrationCompleted", nullptr, [&](const platform::Notification&) { ++posted; });
  app_->deliverDeviceToken(Value::bytes(raw));
  EXPECT_EQ(defaults_.stringForKey("DeviceToken"), "0a1b2c3d4e5f607182");
  EXPECT_EQ(AppDelegate::cleanDeviceToken(Value::bytes(raw)), "0a1b2c3d4e5f607182");
  EXPECT_EQ(defaults_.stringForKey("DeviceID"), "reg-token-1");
  EXPECT_EQ(posted, 1);
  EXPECT_TRUE(log_.contains("Device ..............................token: 0a1b2c3d4e5f607182"));
  EXPECT_EQ(iid_->lastOptions["apns_sandbox"], Value(true));
  EXPECT_EQ(iid_->lastOptions["apns_token"], Value::bytes(raw));
  EXPECT_EQ(calls_[1], "iid.start");
  EXPECT_EQ(calls_[2], "token sender-77 MSG");

  pubSub_->answer = platform::Error("com.stikri.msg", 3001);
  app_->becomeActive();
  EXPECT_TRUE(delegate_->connectedToMSG());
  EXPECT_EQ(calls_.back(), "subscribe reg-token-1 /topics/global");
  EXPECT_FALSE(delegate_->subscribedToTopic());
  EXPECT_TRUE(log_.contains("Already subscribed to /topics/global"));
  pubSub_->answer.reset();
  app_->becomeActive();
  EXPECT_TRUE(delegate_->subscribedToTopic());
  EXPECT_TRUE(log_.contains("Subscribed to /topics/global"));
}

TEST_F(AppDelegateTest, TokenFailureAndRefreshWithoutDeviceTokenAreLogged) {
  app_->launch();
  delegate_->onTokenRefresh();
  EXPECT_TRUE(iid_->lastOptions.isNil());
  EXPECT_TRUE(log_.contains("The MSG registration token needs to be changed."));
  EXPECT_TRUE(log_.contains("Registration to MSG failed with error: no token today"));
  EXPECT_FALSE(defaults_.objectForKey("DeviceID").isString());

  msg_->connectError = platform::Error("com.stikri.msg", 1, Value::dictionary({{"NSLocalizedDescription", "down"}}));
  app_->becomeActive();
  EXPECT_TRUE(log_.contains("Could not connect to MSG: down"));
  EXPECT_FALSE(delegate_->connectedToMSG());
}

TEST(UnconfiguredServicesTest, AnswerWithErrorsInTheirDomainsAndNoToken) {
  ::quillet::testing::LogCapture log;
  platform::Error error;
  EXPECT_FALSE(UnconfiguredServiceContext().configureWithError(&error));
  EXPECT_EQ(error.domain, "com.stikri.context");
  std::optional<platform::Error> connect;
  UnconfiguredMSGService().connectWithHandler([&](const std::optional<platform::Error>& e) { connect = e; });
  ASSERT_TRUE(connect);
  EXPECT_EQ(connect->domain, "com.stikri.msg");
  bool gotToken = true;
  std::string domain;
  UnconfiguredInstanceIDService().tokenWithAuthorizedEntity(
      "", "MSG", Value(), [&](const std::optional<std::string>& token, const std::optional<platform::Error>& e) {
        gotToken = token.has_value();
        domain = e ? e->domain : "";
      });
  EXPECT_FALSE(gotToken);
  EXPECT_EQ(domain, "com.stikri.iid");
}

}  // namespace
}  // namespace quillet::news
