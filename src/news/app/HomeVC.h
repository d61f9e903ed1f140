#pragma once

#include "platform/ui/ViewController.h"

namespace quillet::news {

// The feed screen. For now it stands with its title and the outlets of its
// card, so that launch and push routing lead somewhere real; the feed
// controller fills it in. Main thread.
class HomeVC : public platform::ViewController {
 public:
  HomeVC();
};

}  // namespace quillet::news
