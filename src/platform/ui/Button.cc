#include "platform/ui/Button.h"

#include "platform/ui/Label.h"
#include "platform/ui/UiError.h"

namespace quillet::platform {

bool Button::performTap(Error* error) {
  if (!checkInteractive(error)) return false;
  if (!enabled_) return uiError(error, UiErrorCode::NotInteractive, "'" + name() + "' is disabled");
  if (!action_) return uiError(error, UiErrorCode::WrongKind, "'" + name() + "' has no action");
  runGuarded([this] {
    auto action = action_;
    action(*this);
  });
  return true;
}

void Button::describeState(Value& into) const {
  into.set("title", Value(title_));
  if (titleColor_) into.set("titleColor", Value(titleColor_->hex()));
  describeFont(font_, into);
  if (!imageName_.empty()) into.set("image", Value(imageName_));
  into.set("enabled", Value(enabled_));
  if (selected_) into.set("selected", Value(true));
}

}  // namespace quillet::platform
