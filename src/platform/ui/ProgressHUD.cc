#include "platform/ui/ProgressHUD.h"

#include "platform/ui/ViewAnimation.h"

namespace quillet::platform {

ProgressHUD::ProgressHUD(const std::shared_ptr<View>& view, std::string name) : View(std::move(name)) {
  if (view && view->frame()) setFrame(Rect{0, 0, view->frame()->width, view->frame()->height});
  setHidden(true);
  setAlpha(0);
}

void ProgressHUD::show(bool animated) {
  shown_ = true;
  setHidden(false);
  if (animated) {
    ViewAnimation::animateWithDuration(kAnimationSeconds, [this] { setAlpha(1); });
  } else {
    setAlpha(1);
  }
}

void ProgressHUD::hide(bool animated) {
  shown_ = false;
  if (!animated) {
    setAlpha(0);
    setHidden(true);
    return;
  }
  std::weak_ptr<View> weak = weak_from_this();
  ViewAnimation::animateWithDuration(
      kAnimationSeconds, [this] { setAlpha(0); },
      [weak](bool) {
        auto hud = std::static_pointer_cast<ProgressHUD>(weak.lock());
        if (hud && !hud->shown_) hud->setHidden(true);
      });
}

void ProgressHUD::describeState(Value& into) const { into.set("labelText", Value(labelText_)); }

}  // namespace quillet::platform
