#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/ui/Font.h"
#include "platform/ui/View.h"

namespace quillet::platform {

// What a text field and a text view share: text, placeholder (shown when the
// text is empty, never part of it), colour, font, the editable flag, and the
// editing hooks a screen sets (editing began, text changed, editing ended,
// return pressed). Hooks get the input as sender and must not own the
// screen. Main run loop thread only.
class TextInput : public View {
 public:
  using Hook = std::function<void(TextInput& sender)>;
  using View::View;

  const std::string& text() const { return text_; }
  void setText(std::string text) { text_ = std::move(text); }
  const std::string& placeholder() const { return placeholder_; }
  void setPlaceholder(std::string placeholder) { placeholder_ = std::move(placeholder); }
  const Color& textColor() const { return textColor_; }
  void setTextColor(Color color) { textColor_ = color; }
  const std::optional<Font>& font() const { return font_; }
  void setFont(std::optional<Font> font) { font_ = std::move(font); }
  bool isEditable() const { return editable_; }
  void setEditable(bool editable) { editable_ = editable; }
  bool isEditing() const { return editing_; }

  void setDidBeginEditing(Hook hook) { didBeginEditing_ = std::move(hook); }
  void setDidChange(Hook hook) { didChange_ = std::move(hook); }
  void setDidEndEditing(Hook hook) { didEndEditing_ = std::move(hook); }
  void setShouldReturn(Hook hook) { shouldReturn_ = std::move(hook); }

  // Editing as the reader does it; each runs its hook. Ending when not
  // editing does nothing.
  void beginEditing();
  void endEditing();
  void pressReturn();

  // The reader types `text` over the whole content: begin editing, replace
  // the text, the change hook, end editing (unless the input was already
  // being edited: it stays so). Fails when hidden or not editable.
  bool performSetText(std::string text, Error* error);
  // The reader's finger goes into the input (fails when hidden or not
  // editable) or the input loses the keyboard (always done).
  bool performSetEditing(bool editing, Error* error);

 protected:
  void describeState(Value& into) const override;

 private:
  void runHook(const Hook& hook);

  std::string text_;
  std::string placeholder_;
  Color textColor_ = Color::blackColor();
  std::optional<Font> font_;
  bool editable_ = true;
  bool editing_ = false;
  Hook didBeginEditing_, didChange_, didEndEditing_, shouldReturn_;
};

}  // namespace quillet::platform
