#include "platform/ui/TextMetrics.h"

#include <cmath>

namespace quillet::platform {

Rect TextMetrics::sizeOfLine(std::string_view text, const Font& font) {
  size_t characters = 0;
  for (unsigned char byte : text) {
    if ((byte & 0xC0) != 0x80) ++characters;  // count lead bytes only
  }
  Rect size;
  size.width = std::ceil(static_cast<double>(characters) * font.size * 0.5);
  size.height = std::ceil(font.size * 1.2);
  return size;
}

}  // namespace quillet::platform
