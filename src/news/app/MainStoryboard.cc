#include "news/app/MainStoryboard.h"

#include "news/app/AppKeys.h"
#include "news/app/SplashVC.h"
#include "news/home/HomeVC.h"
#include "news/onboarding/CategoryVC.h"
#include "news/pages/FeedbackViewController.h"
#include "news/pages/FullStoryVC.h"
#include "news/pages/TermsConditionVC.h"

namespace quillet::news {

std::shared_ptr<platform::Storyboard> MainStoryboard::make(const AppEnvironment& environment) {
  auto storyboard = std::make_shared<platform::Storyboard>(kMainStoryboardName);
  storyboard->registerViewController(
      kSplashScreen, [environment] { return std::make_shared<SplashVC>(*environment.defaults, *environment.runLoop); });
  storyboard->registerViewController(kHomeScreen, [environment] { return std::make_shared<HomeVC>(environment); });
  storyboard->registerViewController(kCategoryScreen,
                                     [environment] { return std::make_shared<CategoryVC>(environment); });
  storyboard->registerViewController("TermsConditionVC", [] { return std::make_shared<TermsConditionVC>(); });
  storyboard->registerViewController("FullStoryVC", [] { return std::make_shared<FullStoryVC>(); });
  storyboard->registerViewController("FeedbackViewController",
                                     [] { return std::make_shared<FeedbackViewController>(); });
  storyboard->setInitialViewController(kSplashScreen, true);
  return storyboard;
}

}  // namespace quillet::news
