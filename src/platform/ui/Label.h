#pragma once

#include <optional>
#include <string>

#include "platform/ui/Font.h"
#include "platform/ui/View.h"

namespace quillet::platform {

// A line (or lines) of text. Main run loop thread only.
class Label : public View {
 public:
  using View::View;

  const std::string& text() const { return text_; }
  void setText(std::string text) { text_ = std::move(text); }
  const Color& textColor() const { return textColor_; }
  void setTextColor(Color color) { textColor_ = color; }
  const std::optional<Font>& font() const { return font_; }
  void setFont(std::optional<Font> font) { font_ = std::move(font); }
  // 0 means as many lines as the text needs.
  int numberOfLines() const { return numberOfLines_; }
  void setNumberOfLines(int lines) { numberOfLines_ = lines; }

  std::string kind() const override { return "label"; }

 protected:
  void describeState(Value& into) const override;

 private:
  std::string text_;
  Color textColor_ = Color::blackColor();
  std::optional<Font> font_;
  int numberOfLines_ = 1;
};

// Adds {"font": "<name> <size>"} when a font is set; shared by the text kinds.
void describeFont(const std::optional<Font>& font, Value& into);

}  // namespace quillet::platform
