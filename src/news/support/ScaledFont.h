#pragma once

#include <optional>
#include <string>

#include "platform/ui/Font.h"

namespace quillet::news {

// Fonts that grow with the phone's screen: a size is multiplied by the
// smaller side of the main screen over 320. System fonts are named
// "System-<Weight>", the weight picked by a style number from 5 (UltraLight)
// to 13 (Black); the custom fonts by a style from 0 to 4. Unknown styles give
// no font. Reads platform::Screen::main(); main thread.
class ScaledFont {
 public:
  static double multiplier();
  // The custom font name of a style 0..4, or none.
  static std::optional<std::string> style(int style);
  // The system font of the style's weight at the size times the multiplier, cut to a whole number.
  static std::optional<platform::Font> scaledSystemFontWithStyle(int style, double size);
  // The custom font of the style at the size times the multiplier, not cut.
  static std::optional<platform::Font> scaledCustomFontWithStyle(int style, double size);
  // The custom font of the style at size 8, scaled.
  static std::optional<platform::Font> Caption4WithStyle(int style);

  // Whether the screens set their fonts by the phone's table: on a phone
  // they do; on a tablet they keep the fonts of their resource.
  static bool screensSetFonts();
};

}  // namespace quillet::news
