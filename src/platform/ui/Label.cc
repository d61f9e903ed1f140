#include "platform/ui/Label.h"

#include "platform/value/Format.h"

namespace quillet::platform {

void describeFont(const std::optional<Font>& font, Value& into) {
  if (!font) return;
  into.set("font", Value(font->name + " " + Value(font->size).description()));
}

void Label::describeState(Value& into) const {
  into.set("text", Value(text_));
  into.set("textColor", Value(textColor_.hex()));
  describeFont(font_, into);
  if (numberOfLines_ != 1) into.set("numberOfLines", Value(numberOfLines_));
}

}  // namespace quillet::platform
