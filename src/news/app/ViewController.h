#pragma once

#include <memory>

#include "platform/ui/View.h"
#include "platform/ui/ViewController.h"

namespace quillet::news {

// A plain swiping screen that stands beside the app's screens: it hides the
// navigation bar, and a left or right swipe on its "swipeView" logs "Left
// Swipe" or "Right Swipe" and plays the card's push transition from the
// right or the left on that view. Nothing in the app makes it; it takes part
// in no flow.
//
// Outlets: "swipeView". Made with std::make_shared; main thread only.
class ViewController : public platform::ViewController {
 public:
  static constexpr const char* kIdentifier = "ViewController";
  static constexpr double kSlideSeconds = 0.5;

  ViewController();

  const std::shared_ptr<platform::View>& swipeView() const { return swipeView_; }

 protected:
  void viewDidLoad() override;

 private:
  void handleSwipe(platform::SwipeDirection direction);

  std::shared_ptr<platform::View> swipeView_;
};

}  // namespace quillet::news
