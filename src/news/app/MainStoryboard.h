#pragma once

#include <memory>

#include "platform/defaults/UserDefaults.h"
#include "platform/runloop/RunLoop.h"
#include "platform/ui/Storyboard.h"

namespace quillet::news {

// The storyboard "Main": "SplashVC" first, inside a navigation stack, and the
// screens "HomeVC" and "CategoryVC". The defaults store and run loop are held
// by reference by the screens it makes and must outlive them.
class MainStoryboard {
 public:
  // A new storyboard (tests).
  static std::shared_ptr<platform::Storyboard> make(platform::UserDefaults& defaults, platform::RunLoop& runLoop);
  // Registers the screens in `storyboard`.
  static void registerScreens(platform::Storyboard& storyboard, platform::UserDefaults& defaults,
                              platform::RunLoop& runLoop);
};

}  // namespace quillet::news
