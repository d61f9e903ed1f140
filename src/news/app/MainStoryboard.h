#pragma once

#include <memory>

#include "news/app/AppEnvironment.h"
#include "platform/ui/Storyboard.h"

namespace quillet::news {

// The storyboard "Main": "SplashVC" first, inside a navigation stack, the
// feed "HomeVC", onboarding "CategoryVC", and the content pages
// "TermsConditionVC", "FullStoryVC" and "FeedbackViewController". The screens it makes hold the
// environment's defaults store and run loop by reference; they must outlive
// them.
class MainStoryboard {
 public:
  static std::shared_ptr<platform::Storyboard> make(const AppEnvironment& environment);
};

}  // namespace quillet::news
