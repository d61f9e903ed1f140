#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/ui/Font.h"
#include "platform/ui/View.h"

namespace quillet::platform {

// A push button: a title, an optional image (a check box shows "Checked" or
// "Unchecked"), enabled and selected flags, and the action a tap sends. The
// action gets the button as sender; it must not own the screen that owns
// the button. Main run loop thread only.
class Button : public View {
 public:
  using Action = std::function<void(Button& sender)>;
  using View::View;

  const std::string& title() const { return title_; }
  void setTitle(std::string title) { title_ = std::move(title); }
  const std::optional<Color>& titleColor() const { return titleColor_; }
  void setTitleColor(std::optional<Color> color) { titleColor_ = color; }
  const std::optional<Font>& font() const { return font_; }
  void setFont(std::optional<Font> font) { font_ = std::move(font); }
  const std::string& imageName() const { return imageName_; }
  void setImageNamed(std::string name) { imageName_ = std::move(name); }
  bool isEnabled() const { return enabled_; }
  void setEnabled(bool enabled) { enabled_ = enabled; }
  bool isSelected() const { return selected_; }
  void setSelected(bool selected) { selected_ = selected; }
  void setAction(Action action) { action_ = std::move(action); }

  // Sends the action; fails when hidden, disabled or without an action.
  bool performTap(Error* error) override;

  std::string kind() const override { return "button"; }

 protected:
  void describeState(Value& into) const override;

 private:
  std::string title_;
  std::optional<Color> titleColor_;
  std::optional<Font> font_;
  std::string imageName_;
  bool enabled_ = true;
  bool selected_ = false;
  Action action_;
};

}  // namespace quillet::platform
