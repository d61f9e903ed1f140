#include "news/app/MainStoryboard.h"

#include "news/app/AppKeys.h"
#include "news/app/CategoryVC.h"
#include "news/app/HomeVC.h"
#include "news/app/SplashVC.h"

namespace quillet::news {

std::shared_ptr<platform::Storyboard> MainStoryboard::make(platform::UserDefaults& defaults,
                                                           platform::RunLoop& runLoop) {
  auto storyboard = std::make_shared<platform::Storyboard>(kMainStoryboardName);
  registerScreens(*storyboard, defaults, runLoop);
  return storyboard;
}

void MainStoryboard::registerScreens(platform::Storyboard& storyboard, platform::UserDefaults& defaults,
                                     platform::RunLoop& runLoop) {
  platform::UserDefaults* store = &defaults;
  platform::RunLoop* loop = &runLoop;
  storyboard.registerViewController(kSplashScreen, [store, loop] { return std::make_shared<SplashVC>(*store, *loop); });
  storyboard.registerViewController(kHomeScreen, [] { return std::make_shared<HomeVC>(); });
  storyboard.registerViewController(kCategoryScreen, [] { return std::make_shared<CategoryVC>(); });
  storyboard.setInitialViewController(kSplashScreen, true);
}

}  // namespace quillet::news
