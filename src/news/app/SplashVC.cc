#include "news/app/SplashVC.h"

#include <chrono>
#include <thread>

#include "news/app/AppKeys.h"
#include "platform/log/Log.h"
#include "platform/ui/NavigationController.h"
#include "platform/ui/Storyboard.h"

namespace quillet::news {

SplashVC::SplashVC(platform::UserDefaults& defaults, platform::RunLoop& runLoop)
    : ViewController(kSplashScreen), defaults_(defaults), runLoop_(runLoop) {
  imgBackground_ = std::make_shared<platform::ImageView>("imgBackground");
  registerOutlet("imgBackground", imgBackground_);
}

SplashVC::~SplashVC() {
  if (timerScheduled_) runLoop_.cancel(splashTimer_);
}

void SplashVC::viewDidLoad() {
  if (auto navigation = navigationController()) navigation->setNavigationBarHidden(true);
  view()->setHidden(true);
  pauseBeforeRouting();

  const int64_t launches = defaults_.integerForKey(kLaunchAmountsKey);
  if (launches >= 1) {
    pushScreen(kHomeScreen, true);
  } else {
    view()->setHidden(false);
    imgBackground_->setImageNamed("Splash");
    std::weak_ptr<ViewController> weak = weak_from_this();
    splashTimer_ = runLoop_.schedule(kSplashSeconds, [weak] {
      if (auto self = std::static_pointer_cast<SplashVC>(weak.lock())) {
        self->timerScheduled_ = false;
        self->callCategory();
      }
    });
    timerScheduled_ = true;
  }
  defaults_.setInteger(launches + 1, kLaunchAmountsKey);
}

void SplashVC::pauseBeforeRouting() {
  if (runLoop_.manualClock() != nullptr) return;
  std::this_thread::sleep_for(std::chrono::duration<double>(kHideSleepSeconds));
}

void SplashVC::callCategory() { pushScreen(kCategoryScreen, false); }

void SplashVC::pushScreen(const char* identifier, bool animated) {
  auto navigation = navigationController();
  if (!storyboard() || !navigation) {
    platform::Log::write(std::string("SplashVC: cannot show ") + identifier + " outside a storyboard stack");
    return;
  }
  platform::Error error;
  auto screen = storyboard()->instantiateViewControllerWithIdentifier(identifier, &error);
  if (!screen) {
    platform::Log::write("SplashVC: " + error.description());
    return;
  }
  navigation->pushViewController(std::move(screen), animated);
}

}  // namespace quillet::news
