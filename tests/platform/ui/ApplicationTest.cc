#include <gtest/gtest.h>

#include "platform/notifications/NotificationCenter.h"
#include "platform/ui/Application.h"
#include "platform/ui/Button.h"
#include "platform/ui/ImageView.h"
#include "platform/ui/Label.h"
#include "platform/ui/NavigationController.h"
#include "platform/ui/Switch.h"
#include "platform/ui/TextField.h"
#include "platform/ui/UiDriver.h"
#include "platform/ui/UiError.h"

namespace quillet::platform {
namespace {

TEST(ApplicationTest, OpensOnlyInstalledSchemesAndWebAddresses) {
  Application app;
  std::vector<std::string> opened;
  std::vector<std::string> asked;
  app.events()->subscribe([&](const UiEvent& e) {
    if (e.kind == UiEvent::Kind::UrlOpened) opened.push_back(e.text);
    if (e.kind == UiEvent::Kind::UrlQueried) asked.push_back(e.text + (e.info.boolValue() ? " yes" : " no"));
  });
  app.setInstalledSchemes({"photoapp"});
  EXPECT_FALSE(app.canOpenURL("chatapp://app"));
  EXPECT_FALSE(app.openURL("chatapp://send?text=YOUR%20MSG"));
  EXPECT_FALSE(app.openURL("not a url"));
  EXPECT_TRUE(app.openURL("photoapp://location?id=1"));
  EXPECT_TRUE(app.openURL("HTTPS://example.test/app"));
  EXPECT_EQ(opened, (std::vector<std::string>{"photoapp://location?id=1", "HTTPS://example.test/app"}));
  EXPECT_EQ(app.openedURLs(), opened);
  EXPECT_TRUE(app.canOpenURL("photoapp://app"));
  EXPECT_EQ(asked, (std::vector<std::string>{"chatapp://app no", "photoapp://app yes"}));  // openURL asks nothing
}

TEST(ApplicationTest, EveryBadgeSetIsAnEventInOrder) {
  Application app;
  std::vector<int64_t> badges;
  auto token = app.events()->subscribe([&](const UiEvent& e) {
    if (e.kind != UiEvent::Kind::BadgeChanged) return;
    badges.push_back(e.number);
    if (e.number == 2) app.setApplicationIconBadgeNumber(0);  // nested: delivered after this one
  });
  std::vector<int64_t> second;
  app.events()->subscribe([&](const UiEvent& e) { second.push_back(e.number); });
  app.setApplicationIconBadgeNumber(1);
  app.setApplicationIconBadgeNumber(2);
  app.setApplicationIconBadgeNumber(0);
  EXPECT_EQ(badges, (std::vector<int64_t>{1, 2, 0, 0}));
  EXPECT_EQ(second, badges);
  EXPECT_EQ(app.applicationIconBadgeNumber(), 0);
  app.events()->unsubscribe(token);
  app.setApplicationIconBadgeNumber(5);
  EXPECT_EQ(badges.size(), 4u);

  app.registerUserNotificationSettings(7);
  app.registerForRemoteNotifications();
  EXPECT_TRUE(app.isRegisteredForRemoteNotifications());
  app.scheduleLocalNotification({"Quillet", "A story", "default", 1, "news", Value(), 100.0});
  ASSERT_EQ(app.scheduledLocalNotifications().size(), 1u);
  EXPECT_EQ(second.back(), 0);
}

// Records the delegate's life-cycle calls and the broadcasts in one list.
class LifeCycleRecorder : public ApplicationDelegate {
 public:
  explicit LifeCycleRecorder(std::vector<std::string>& heard) : heard_(heard) {}
  void applicationWillResignActive(Application&) override { heard_.push_back("willResignActive"); }
  void applicationDidEnterBackground(Application&) override { heard_.push_back("didEnterBackground"); }
  void applicationWillEnterForeground(Application&) override { heard_.push_back("willEnterForeground"); }
  void applicationDidBecomeActive(Application&) override { heard_.push_back("didBecomeActive"); }
  void applicationWillTerminate(Application&) override { heard_.push_back("willTerminate"); }

 private:
  std::vector<std::string>& heard_;
};

TEST(ApplicationTest, LifeCycleBroadcastsFollowTheDelegateInThePhonesOrder) {
  Application app;
  std::vector<std::string> heard;
  app.setDelegate(std::make_shared<LifeCycleRecorder>(heard));
  std::vector<NotificationCenter::ObserverToken> tokens;
  for (const char* name : {Application::kDidFinishLaunchingNotification, Application::kDidBecomeActiveNotification,
                           Application::kWillResignActiveNotification, Application::kDidEnterBackgroundNotification,
                           Application::kWillEnterForegroundNotification, Application::kWillTerminateNotification}) {
    tokens.push_back(NotificationCenter::defaultCenter().addObserver(
        name, &app, [&heard](const Notification& note) { heard.push_back(note.name); }));
  }
  app.launch();
  app.becomeActive();
  app.enterBackground();  // from active: resigns first
  app.enterForeground();  // inactive, in the foreground
  EXPECT_EQ(app.applicationState(), ApplicationState::Inactive);
  app.becomeActive();
  app.terminate();
  app.terminate();  // once only
  for (auto token : tokens) NotificationCenter::defaultCenter().removeObserver(token);
  EXPECT_EQ(app.applicationState(), ApplicationState::Terminated);
  EXPECT_EQ(
      heard,
      (std::vector<std::string>{
          "UIApplicationDidFinishLaunchingNotification", "didBecomeActive", "UIApplicationDidBecomeActiveNotification",
          "willResignActive", "UIApplicationWillResignActiveNotification", "didEnterBackground",
          "UIApplicationDidEnterBackgroundNotification", "willEnterForeground",
          "UIApplicationWillEnterForegroundNotification", "didBecomeActive", "UIApplicationDidBecomeActiveNotification",
          "willResignActive", "UIApplicationWillResignActiveNotification", "didEnterBackground",
          "UIApplicationDidEnterBackgroundNotification", "willTerminate", "UIApplicationWillTerminateNotification"}));
  EXPECT_FALSE(LifeCycleRecorder(heard).respondsToRemoteNotification(RemoteNotificationForm::FetchCompletion));
}

TEST(ApplicationTest, BackgroundTasksBeginEndAndExpireAsEvents) {
  Application app;
  std::vector<std::string> events;
  app.events()->subscribe([&](const UiEvent& e) {
    if (e.kind == UiEvent::Kind::BackgroundTask) events.push_back(e.text + " " + std::to_string(e.number));
  });
  BackgroundTaskIdentifier second = kBackgroundTaskInvalid;
  const BackgroundTaskIdentifier first = app.beginBackgroundTaskWithExpirationHandler([&] {
    app.endBackgroundTask(first);
    app.endBackgroundTask(second);  // a handler may end others too
  });
  second = app.beginBackgroundTaskWithExpirationHandler([] { FAIL() << "ended before its turn"; });
  const BackgroundTaskIdentifier third = app.beginBackgroundTaskWithExpirationHandler(nullptr);
  EXPECT_NE(first, kBackgroundTaskInvalid);
  app.endBackgroundTask(kBackgroundTaskInvalid);
  app.endBackgroundTask(99);
  app.expireBackgroundTasks();
  EXPECT_EQ(app.backgroundTaskCount(), 1u);  // the third's handler does not end it
  app.endBackgroundTask(third);
  app.endBackgroundTask(third);
  EXPECT_EQ(events, (std::vector<std::string>{"began 1", "began 2", "began 3", "expired 1", "ended 1", "ended 2",
                                              "expired 3", "ended 3"}));
}

class HomeScreen : public ViewController {
 public:
  HomeScreen() : ViewController("HomeVC") {}
  int refreshes = 0;
  bool night = false;
  std::string email;

 protected:
  void viewDidLoad() override {
    auto title = std::make_shared<Label>();
    title->setText("My Feed");
    registerOutlet("lblCategoryTitle", title);
    auto posted = std::make_shared<Label>();
    posted->setText("Posted By someone");
    posted->setHidden(true);
    registerOutlet("lblPostedBy", posted);
    auto image = std::make_shared<ImageView>();
    image->setImageWithURL("http://127.0.0.1/a.jpg", "placeholder.png");
    registerOutlet("imgNews", image);
    auto refresh = std::make_shared<Button>();
    refresh->setAction([this](Button&) { ++refreshes; });
    registerOutlet("btnRefresh", refresh);
    auto mode = std::make_shared<Switch>();
    mode->setAction([this](Switch& s) { night = s.isOn(); });
    registerOutlet("switchNightMode", mode);
    auto field = std::make_shared<TextField>();
    field->setDidEndEditing([this](TextInput& t) { email = t.text(); });
    registerOutlet("txtEmail", field);
  }
};

TEST(ApplicationTest, RootsSetBeforeTheWindowShowsAreReportedWhenItShowsInOrder) {
  Application app;
  std::vector<Value> replaced;
  app.events()->subscribe([&](const UiEvent& e) {
    if (e.kind == UiEvent::Kind::ScreenReplaced) replaced.push_back(e.toValue());
  });
  app.window().setRootViewController(std::make_shared<ViewController>("SplashVC"));
  app.window().setRootViewController(std::make_shared<NavigationController>(std::make_shared<HomeScreen>()));
  EXPECT_TRUE(replaced.empty());
  app.window().makeKeyAndVisible();
  ASSERT_EQ(replaced.size(), 2u);
  EXPECT_EQ(replaced[0]["screen"], Value("SplashVC"));
  EXPECT_TRUE(replaced[0]["previous"].isNil());
  EXPECT_EQ(replaced[1]["screen"], Value("HomeVC"));
  EXPECT_EQ(replaced[1]["previous"], Value("SplashVC"));
  EXPECT_EQ(replaced[1]["info"], Value::array({"HomeVC"}));
}

TEST(ApplicationTest, SnapshotAndDriverSeeOnlyTheTopScreen) {
  Application app;
  auto home = std::make_shared<HomeScreen>();
  auto nav = std::make_shared<NavigationController>(home);
  app.window().setRootViewController(nav);
  app.launch();
  app.becomeActive();
  UiDriver driver(app);

  Value shot = driver.snapshot();
  EXPECT_EQ(shot["screen"].string(), "HomeVC");
  EXPECT_EQ(shot["state"].string(), "active");
  EXPECT_EQ(shot["outlets"]["lblCategoryTitle"]["text"].string(), "My Feed");
  EXPECT_EQ(shot["outlets"]["lblCategoryTitle"]["textColor"].string(), "#000000FF");
  EXPECT_TRUE(shot["outlets"]["lblPostedBy"]["hidden"].boolValue());
  EXPECT_TRUE(shot["outlets"]["lblPostedBy"]["text"].isNil());
  EXPECT_EQ(shot["outlets"]["imgNews"]["image"].string(), "placeholder.png");

  EXPECT_TRUE(driver.tap("btnRefresh"));
  EXPECT_TRUE(driver.setOn("switchNightMode", true));
  EXPECT_TRUE(driver.setText("txtEmail", "reader@example.test"));
  EXPECT_EQ(home->refreshes, 1);
  EXPECT_TRUE(home->night);
  EXPECT_EQ(home->email, "reader@example.test");

  Error error;
  EXPECT_FALSE(driver.tap("btnNoSuch", &error));
  EXPECT_EQ(error.code, static_cast<int64_t>(UiErrorCode::NoSuchOutlet));
  EXPECT_FALSE(driver.setOn("btnRefresh", true, &error));
  EXPECT_EQ(error.code, static_cast<int64_t>(UiErrorCode::WrongKind));
  EXPECT_FALSE(driver.tap("lblPostedBy", &error));
  EXPECT_EQ(error.code, static_cast<int64_t>(UiErrorCode::NotInteractive));
  EXPECT_FALSE(driver.selectRow("lblCategoryTitle", IndexPath::forRow(0), &error));
  EXPECT_FALSE(driver.tap("btnRefresh/3/btnCheck", &error));
  EXPECT_EQ(error.code, static_cast<int64_t>(UiErrorCode::NoSuchOutlet));

  nav->pushViewController(std::make_shared<ViewController>("FullStoryVC"), true);
  shot = driver.snapshot();
  EXPECT_EQ(shot["screen"].string(), "FullStoryVC");
  EXPECT_EQ(shot["stack"], Value::array({"HomeVC", "FullStoryVC"}));
  EXPECT_TRUE(shot["outlets"]["btnRefresh"].isNil());
  EXPECT_FALSE(driver.tap("btnRefresh", &error));

  nav->popViewControllerAnimated(true);
  EXPECT_EQ(driver.snapshot()["stack"], Value::array({"HomeVC"}));
  EXPECT_TRUE(driver.tap("btnRefresh"));

  app.window().setRootViewController(nullptr);
  EXPECT_FALSE(driver.tap("btnRefresh", &error));
  EXPECT_EQ(error.code, static_cast<int64_t>(UiErrorCode::NoScreen));
}

}  // namespace
}  // namespace quillet::platform
