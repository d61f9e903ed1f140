#pragma once

#include <string>

namespace quillet::platform {

// A colour as red, green, blue and alpha components from 0 to 1, as the
// phone's colour objects hold them. Plain data.
struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;

  static Color rgb255(int red, int green, int blue, double alpha = 1.0) {
    return Color{red / 255.0, green / 255.0, blue / 255.0, alpha};
  }
  static Color blackColor() { return Color{0, 0, 0, 1}; }
  static Color whiteColor() { return Color{1, 1, 1, 1}; }
  static Color redColor() { return Color{1, 0, 0, 1}; }
  static Color lightGrayColor() { return Color{2.0 / 3.0, 2.0 / 3.0, 2.0 / 3.0, 1}; }
  static Color darkGrayColor() { return Color{1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0, 1}; }
  static Color clearColor() { return Color{0, 0, 0, 0}; }

  Color withAlpha(double a) const { return Color{red, green, blue, a}; }

  // "#RRGGBBAA", each component rounded to 0..255: the form a snapshot shows.
  std::string hex() const;

  bool operator==(const Color&) const = default;
};

}  // namespace quillet::platform
