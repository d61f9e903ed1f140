#pragma once

#include <memory>
#include <string>

#include "platform/ui/View.h"

namespace quillet::platform {

// A progress overlay laid over a view: it covers the view's bounds and shows
// a spinner with one label ("Loading....."). It starts hidden. show() makes it
// visible at once (fading in when animated); hide() fades it out when
// animated and hides it when the fade ends, kAnimationSeconds later on the
// main run loop's clock, unless it was shown again meanwhile.
//
// The caller adds the overlay to a view (usually the one given to the
// constructor, which is not kept). Main run loop thread only.
class ProgressHUD : public View {
 public:
  static constexpr double kAnimationSeconds = 0.3;

  // Sized to `view`'s bounds (its frame at the origin); `view` may be null.
  explicit ProgressHUD(const std::shared_ptr<View>& view, std::string name = "");

  const std::string& labelText() const { return labelText_; }
  void setLabelText(std::string text) { labelText_ = std::move(text); }

  void show(bool animated);
  void hide(bool animated);
  // Between show() and hide(): the overlay is on show or fading in.
  bool isShown() const { return shown_; }

  std::string kind() const override { return "progressHUD"; }

 protected:
  // {"labelText"}.
  void describeState(Value& into) const override;

 private:
  std::string labelText_;
  bool shown_ = false;
};

}  // namespace quillet::platform
