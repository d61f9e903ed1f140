#pragma once

#include <memory>

#include "platform/defaults/UserDefaults.h"
#include "platform/runloop/RunLoop.h"
#include "platform/ui/ImageView.h"
#include "platform/ui/ViewController.h"

namespace quillet::news {

// The first screen: counts launches in "LaunchAmounts" and sends the first
// launch to onboarding ("CategoryVC", after 4 seconds of splash image) and
// every later one to the feed ("HomeVC", at once). The defaults store and the
// run loop are held by reference and outlive the screen. Main thread.
class SplashVC : public platform::ViewController {
 public:
  static constexpr double kSplashSeconds = 4.0;
  static constexpr double kHideSleepSeconds = 0.01;

  SplashVC(platform::UserDefaults& defaults, platform::RunLoop& runLoop);
  ~SplashVC() override;

  // The timer's action: pushes a new "CategoryVC", not animated.
  void callCategory();

 protected:
  void viewDidLoad() override;

 private:
  // The short pause before routing. Under a ManualClock the loop's time does
  // not move by itself and nothing else runs on this thread meanwhile, so the
  // pause is skipped rather than advancing the clock from inside a screen hook.
  void pauseBeforeRouting();
  void pushScreen(const char* identifier, bool animated);

  platform::UserDefaults& defaults_;
  platform::RunLoop& runLoop_;
  std::shared_ptr<platform::ImageView> imgBackground_;
  platform::TimerId splashTimer_{};
  bool timerScheduled_ = false;
};

}  // namespace quillet::news
