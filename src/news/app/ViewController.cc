#include "news/app/ViewController.h"

#include "platform/log/Log.h"
#include "platform/ui/NavigationController.h"

namespace quillet::news {

ViewController::ViewController() : platform::ViewController(kIdentifier) {
  swipeView_ = std::make_shared<platform::View>("swipeView");
  registerOutlet("swipeView", swipeView_);
}

void ViewController::viewDidLoad() {
  if (auto navigation = navigationController()) navigation->setNavigationBarHidden(true);
  for (auto direction : {platform::SwipeDirection::Left, platform::SwipeDirection::Right}) {
    swipeView_->addSwipeHandler(direction, [this, direction] { handleSwipe(direction); });
  }
}

void ViewController::handleSwipe(platform::SwipeDirection direction) {
  const bool left = direction == platform::SwipeDirection::Left;
  platform::Log::write(left ? "Left Swipe" : "Right Swipe");
  swipeView_->addTransition(platform::ViewTransition{"push", left ? "fromRight" : "fromLeft", kSlideSeconds});
}

}  // namespace quillet::news
