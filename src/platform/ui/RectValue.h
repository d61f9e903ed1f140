#pragma once

#include "platform/ui/Rect.h"
#include "platform/value/Value.h"

namespace quillet::platform {

// {"x", "y", "width", "height"}: a frame as events and snapshots show it.
inline Value rectValue(const Rect& rect) {
  return Value::dictionary(
      {{"x", Value(rect.x)}, {"y", Value(rect.y)}, {"width", Value(rect.width)}, {"height", Value(rect.height)}});
}

}  // namespace quillet::platform
