#include "platform/ui/Switch.h"

#include "platform/ui/UiError.h"

namespace quillet::platform {

bool Switch::performSetOn(bool on, Error* error) {
  if (!checkInteractive(error)) return false;
  if (!enabled_) return uiError(error, UiErrorCode::NotInteractive, "'" + name() + "' is disabled");
  if (on == on_) return true;
  on_ = on;
  if (action_) {
    runGuarded([this] {
      auto action = action_;
      action(*this);
    });
  }
  return true;
}

void Switch::describeState(Value& into) const {
  into.set("on", Value(on_));
  if (!enabled_) into.set("enabled", Value(false));
}

}  // namespace quillet::platform
