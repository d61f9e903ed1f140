#include "news/app/HomeVC.h"

#include <memory>

#include "news/app/AppKeys.h"
#include "platform/ui/Button.h"
#include "platform/ui/ImageView.h"
#include "platform/ui/Label.h"

namespace quillet::news {

HomeVC::HomeVC() : ViewController(kHomeScreen) {
  setTitle("My Feed");
  registerOutlet("lblTitle", std::make_shared<platform::Label>("lblTitle"));
  registerOutlet("imgNews", std::make_shared<platform::ImageView>("imgNews"));
  registerOutlet("lblDescription", std::make_shared<platform::Label>("lblDescription"));
  registerOutlet("btnMenu", std::make_shared<platform::Button>("btnMenu"));
}

}  // namespace quillet::news
