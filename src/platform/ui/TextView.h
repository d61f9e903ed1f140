#pragma once

#include <optional>

#include "platform/ui/TextInput.h"

namespace quillet::platform {

// A multi-line text box, editable or shown read-only (a story's body), with
// an optional border colour. Main run loop thread only.
class TextView : public TextInput {
 public:
  using TextInput::TextInput;

  const std::optional<Color>& borderColor() const { return borderColor_; }
  void setBorderColor(std::optional<Color> color) { borderColor_ = color; }

  std::string kind() const override { return "textView"; }

 protected:
  void describeState(Value& into) const override {
    TextInput::describeState(into);
    if (borderColor_) into.set("borderColor", Value(borderColor_->hex()));
  }

 private:
  std::optional<Color> borderColor_;
};

}  // namespace quillet::platform
