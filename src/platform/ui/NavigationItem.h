#pragma once

#include <string>

namespace quillet::platform {

// What a screen shows in the navigation bar above it. Plain data.
struct NavigationItem {
  std::string title;
  bool hidesBackButton = false;
};

}  // namespace quillet::platform
