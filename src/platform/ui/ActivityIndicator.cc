#include "platform/ui/ActivityIndicator.h"

namespace quillet::platform {

void ActivityIndicator::startAnimating() {
  animating_ = true;
  if (hidesWhenStopped_) setHidden(false);
}

void ActivityIndicator::stopAnimating() {
  animating_ = false;
  if (hidesWhenStopped_) setHidden(true);
}

}  // namespace quillet::platform
