#include "platform/ui/Color.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace quillet::platform {

namespace {
int component(double value) { return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255.0)); }
}  // namespace

std::string Color::hex() const {
  char text[16];
  std::snprintf(text, sizeof text, "#%02X%02X%02X%02X", component(red), component(green), component(blue),
                component(alpha));
  return text;
}

}  // namespace quillet::platform
