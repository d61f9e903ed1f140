#include "platform/ui/ViewAnimation.h"

#include <utility>

#include "platform/runloop/RunLoop.h"

namespace quillet::platform {

void ViewAnimation::animateWithDuration(double duration, const std::function<void()>& animations,
                                        Completion completion) {
  if (animations) animations();
  if (!completion) return;
  RunLoop::main().schedule(duration, [completion = std::move(completion)] { completion(true); });
}

}  // namespace quillet::platform
