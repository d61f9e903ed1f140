#pragma once

#include <string_view>

#include "platform/ui/Font.h"
#include "platform/ui/Rect.h"

namespace quillet::platform {

// The size a line of text takes in a font, for layout that sizes views to
// their text. Headless, there are no glyphs: every character (a UTF-8 code
// point) advances half the point size, and a line is 1.2 times the point
// size high; both are rounded up to whole points, as sizing to fit does.
// Pure; any thread.
class TextMetrics {
 public:
  // A Rect at the origin with the text's width and height.
  static Rect sizeOfLine(std::string_view text, const Font& font);
};

}  // namespace quillet::platform
