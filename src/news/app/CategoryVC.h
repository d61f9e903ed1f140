#pragma once

#include "platform/ui/ViewController.h"

namespace quillet::news {

// The onboarding screen where the reader picks categories. For now it stands
// with its title and outlets; onboarding fills it in. Main thread.
class CategoryVC : public platform::ViewController {
 public:
  CategoryVC();
};

}  // namespace quillet::news
