#pragma once

#include <string>

namespace quillet::platform {

// A decorating transition played on a view's layer, as the phone's
// animation system plays one: its type ("push", "fade", ...), the side it
// comes from ("fromRight", "fromLeft", "fromBottom", "fromTop"), how long it
// lasts and its pace. It changes nothing the reader can use; the view keeps
// the last one added so that a watcher can see it. Plain data.
struct ViewTransition {
  std::string type = "push";
  std::string subtype;
  double duration = 0.25;
  std::string timingFunction = "easeInEaseOut";

  bool operator==(const ViewTransition&) const = default;
};

}  // namespace quillet::platform
