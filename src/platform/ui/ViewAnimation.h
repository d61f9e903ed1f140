#pragma once

#include <functional>

namespace quillet::platform {

// Animated changes of views, as the phone's animation system makes them: the
// changes take effect at once (the model value a snapshot reads), and the
// completion runs when the animation would have ended, `duration` seconds
// later on the main run loop's clock. Main run loop thread only.
class ViewAnimation {
 public:
  using Completion = std::function<void(bool finished)>;

  static void animateWithDuration(double duration, const std::function<void()>& animations, Completion completion = {});
};

}  // namespace quillet::platform
