// The plain swiping screen: bar hidden, swipes logged with their slide.
#include <gtest/gtest.h>

#include "news/app/ViewController.h"
#include "platform/ui/NavigationController.h"
#include "support/LogCapture.h"

namespace quillet::news {
namespace {

TEST(SwipingScreenTest, SwipesLogAndSlideTheView) {
  ::quillet::testing::LogCapture log;
  auto screen = std::make_shared<ViewController>();
  auto navigation = std::make_shared<platform::NavigationController>(screen);
  screen->loadViewIfNeeded();
  EXPECT_TRUE(navigation->isNavigationBarHidden());

  ASSERT_TRUE(screen->swipeView()->performSwipe(platform::SwipeDirection::Left, nullptr));
  EXPECT_EQ(screen->swipeView()->transition(), (platform::ViewTransition{"push", "fromRight", 0.5}));
  ASSERT_TRUE(screen->swipeView()->performSwipe(platform::SwipeDirection::Right, nullptr));
  EXPECT_EQ(screen->swipeView()->transition(), (platform::ViewTransition{"push", "fromLeft", 0.5}));
  EXPECT_EQ(log.messages(), (std::vector<std::string>{"Left Swipe", "Right Swipe"}));
  EXPECT_FALSE(screen->swipeView()->performSwipe(platform::SwipeDirection::Up, nullptr));
}

}  // namespace
}  // namespace quillet::news
