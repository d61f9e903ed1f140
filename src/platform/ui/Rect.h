#pragma once

#include "platform/value/Value.h"

namespace quillet::platform {

// A frame in points: origin and size. Plain data.
struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  // The same rectangle moved by (dx, dy).
  Rect offsetBy(double dx, double dy) const { return Rect{x + dx, y + dy, width, height}; }

  bool operator==(const Rect&) const = default;
};

// {x, y, width, height}, as snapshots print a frame.
inline Value frameValue(const Rect& rect) {
  return Value::dictionary(
      {{"x", Value(rect.x)}, {"y", Value(rect.y)}, {"width", Value(rect.width)}, {"height", Value(rect.height)}});
}

}  // namespace quillet::platform
