#include "news/app/CategoryVC.h"

#include <memory>

#include "news/app/AppKeys.h"
#include "platform/ui/Button.h"
#include "platform/ui/Label.h"

namespace quillet::news {

CategoryVC::CategoryVC() : ViewController(kCategoryScreen) {
  setTitle("Choose Categories");
  registerOutlet("lblTitle", std::make_shared<platform::Label>("lblTitle"));
  registerOutlet("btnNext", std::make_shared<platform::Button>("btnNext"));
}

}  // namespace quillet::news
