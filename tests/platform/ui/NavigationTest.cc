#include <gtest/gtest.h>

#include "platform/ui/AlertController.h"
#include "platform/ui/Application.h"
#include "platform/ui/Button.h"
#include "platform/ui/NavigationController.h"
#include "platform/ui/RecordingScreen.h"
#include "platform/ui/Storyboard.h"
#include "platform/ui/UiDriver.h"
#include "platform/ui/UiError.h"

namespace quillet::platform {
namespace {

using testing::RecordingScreen;
using Strings = std::vector<std::string>;

struct Phone {
  Application app;
  Strings log;
  Strings events;
  std::shared_ptr<Storyboard> storyboard = std::make_shared<Storyboard>("Main");

  Phone() {
    app.events()->subscribe([this](const UiEvent& e) {
      events.push_back(std::string(UiEvent::kindName(e.kind)) + ":" + e.screen + (e.animated ? "+" : ""));
    });
    for (const char* id : {"SplashVC", "HomeVC", "CategoryVC"}) {
      storyboard->registerViewController(id, [this, id] { return std::make_shared<RecordingScreen>(id, log); });
    }
  }
  std::shared_ptr<RecordingScreen> make(const std::string& id) {
    return std::static_pointer_cast<RecordingScreen>(storyboard->instantiateViewControllerWithIdentifier(id));
  }
};

TEST(NavigationTest, PushAndPopRunTheLifecycleInOrder) {
  Phone phone;
  auto nav = std::make_shared<NavigationController>(phone.make("SplashVC"));
  phone.app.window().setRootViewController(nav);
  phone.app.window().makeKeyAndVisible();
  EXPECT_EQ(phone.log, (Strings{"SplashVC.load", "SplashVC.willAppear", "SplashVC.didAppear"}));

  phone.log.clear();
  auto home = phone.make("HomeVC");
  nav->pushViewController(home, true);
  EXPECT_EQ(phone.log, (Strings{"HomeVC.load", "SplashVC.willDisappear", "HomeVC.willAppear", "SplashVC.didDisappear",
                                "HomeVC.didAppear"}));
  EXPECT_EQ(home->navigationController(), nav);

  phone.log.clear();
  std::weak_ptr<ViewController> weakHome = home;
  home.reset();
  EXPECT_EQ(nav->popViewControllerAnimated(false).get(), weakHome.lock().get());
  EXPECT_EQ(phone.log,
            (Strings{"HomeVC.willDisappear", "SplashVC.willAppear", "HomeVC.didDisappear", "SplashVC.didAppear"}));
  EXPECT_TRUE(weakHome.expired());
  EXPECT_EQ(nav->popViewControllerAnimated(false), nullptr);  // the root stays
  EXPECT_EQ(phone.events, (Strings{"screenReplaced:SplashVC", "screenPushed:HomeVC+", "screenPopped:HomeVC"}));
}

TEST(NavigationTest, APushFromViewDidLoadRunsAfterTheScreenHasAppeared) {
  Phone phone;
  auto splash = phone.make("SplashVC");
  splash->onLoad = [&phone](RecordingScreen& screen) {
    screen.navigationController()->setNavigationBarHidden(true);
    screen.navigationController()->pushViewController(phone.make("HomeVC"), true);
  };
  phone.app.window().setRootViewController(std::make_shared<NavigationController>(splash));
  phone.app.window().makeKeyAndVisible();
  EXPECT_EQ(phone.log,
            (Strings{"SplashVC.load", "SplashVC.willAppear", "SplashVC.didAppear", "HomeVC.load",
                     "SplashVC.willDisappear", "HomeVC.willAppear", "SplashVC.didDisappear", "HomeVC.didAppear"}));
  EXPECT_EQ(phone.events, (Strings{"screenReplaced:SplashVC", "screenPushed:HomeVC+"}));
  EXPECT_EQ(phone.app.window().stackIdentifiers(), (Strings{"SplashVC", "HomeVC"}));
}

TEST(NavigationTest, ReplacingTheWindowRootReleasesTheOldStack) {
  Phone phone;
  auto nav = std::make_shared<NavigationController>(phone.make("SplashVC"));
  auto home = phone.make("HomeVC");
  nav->pushViewController(home, false);  // off screen: only the stack changes
  EXPECT_TRUE(phone.log.empty());
  phone.app.window().setRootViewController(nav);
  phone.app.window().makeKeyAndVisible();
  std::weak_ptr<ViewController> oldNav = nav, oldHome = home;
  nav.reset();
  home.reset();

  phone.log.clear();
  phone.events.clear();
  phone.app.window().setRootViewController(std::make_shared<NavigationController>(phone.make("HomeVC")));
  EXPECT_TRUE(oldNav.expired());
  EXPECT_TRUE(oldHome.expired());
  EXPECT_EQ(phone.log, (Strings{"HomeVC.willDisappear", "HomeVC.load", "HomeVC.willAppear", "HomeVC.didDisappear",
                                "HomeVC.didAppear"}));
  EXPECT_EQ(phone.events, (Strings{"screenReplaced:HomeVC"}));
  EXPECT_EQ(phone.app.window().stackIdentifiers(), (Strings{"HomeVC"}));
}

TEST(NavigationTest, StoryboardKnowsOnlyItsScreens) {
  Phone phone;
  Error error;
  EXPECT_EQ(phone.storyboard->instantiateViewControllerWithIdentifier("NoSuchVC", &error), nullptr);
  EXPECT_EQ(error.domain, kUiErrorDomain);
  EXPECT_EQ(error.code, static_cast<int64_t>(UiErrorCode::NoSuchScreen));
  EXPECT_NE(error.localizedDescription().find("NoSuchVC"), std::string::npos);

  phone.storyboard->setInitialViewController("SplashVC", true);
  auto initial = std::dynamic_pointer_cast<NavigationController>(phone.storyboard->instantiateInitialViewController());
  ASSERT_NE(initial, nullptr);
  EXPECT_EQ(initial->stackIdentifiers(), (Strings{"SplashVC"}));
  EXPECT_EQ(initial->topViewController()->storyboard(), phone.storyboard);
  EXPECT_FALSE(initial->topViewController()->isViewLoaded());
}

TEST(NavigationTest, AlertActionsRunOnTapByTitleAndTheAlertBlocksTheScreen) {
  Phone phone;
  auto home = phone.make("HomeVC");
  int taps = 0;
  auto button = std::make_shared<Button>();
  button->setAction([&taps](Button&) { ++taps; });
  home->registerOutlet("btnRefresh", button);
  phone.app.window().setRootViewController(std::make_shared<NavigationController>(home));
  phone.app.window().makeKeyAndVisible();

  auto alert =
      AlertController::alertControllerWithTitle("Share target missing.", "The share target is not on this phone.");
  std::string ran;
  alert->addAction({"OK", AlertActionStyle::Cancel, [&](const AlertAction& a) { ran = a.title; }});
  phone.log.clear();
  home->presentViewController(alert, true);
  EXPECT_TRUE(phone.log.empty());  // the screen stays on show under an alert

  UiDriver driver(phone.app);
  Error error;
  EXPECT_FALSE(driver.tap("btnRefresh", &error));
  EXPECT_EQ(error.code, static_cast<int64_t>(UiErrorCode::NotInteractive));
  EXPECT_EQ(driver.snapshot()["alert"]["message"].string(), "The share target is not on this phone.");
  EXPECT_FALSE(driver.tapAlertAction("Cancel", &error));
  EXPECT_EQ(error.code, static_cast<int64_t>(UiErrorCode::NoAlert));

  EXPECT_TRUE(driver.tapAlertAction("OK"));
  EXPECT_EQ(ran, "OK");
  EXPECT_EQ(phone.app.window().visibleAlert(), nullptr);
  EXPECT_TRUE(driver.tap("btnRefresh"));
  EXPECT_EQ(taps, 1);
  EXPECT_EQ(phone.events, (Strings{"screenReplaced:HomeVC", "alertShown:HomeVC+", "alertDismissed:HomeVC+"}));
}

TEST(NavigationTest, PresentedScreenCoversThePresenterUntilDismissed) {
  Phone phone;
  auto home = phone.make("HomeVC");
  phone.app.window().setRootViewController(std::make_shared<NavigationController>(home));
  phone.app.window().makeKeyAndVisible();
  phone.log.clear();
  auto page = phone.make("CategoryVC");
  std::weak_ptr<ViewController> weakPage = page;
  home->presentViewController(page, true);
  EXPECT_EQ(phone.app.window().topScreen(), page);
  page.reset();
  weakPage.lock()->dismissViewControllerAnimated(true);  // asks its presenter
  EXPECT_TRUE(weakPage.expired());
  EXPECT_EQ(phone.log, (Strings{"CategoryVC.load", "HomeVC.willDisappear", "CategoryVC.willAppear",
                                "HomeVC.didDisappear", "CategoryVC.didAppear", "CategoryVC.willDisappear",
                                "HomeVC.willAppear", "CategoryVC.didDisappear", "HomeVC.didAppear"}));
}

}  // namespace
}  // namespace quillet::platform
