#pragma once

namespace quillet::platform {

// The phone's main screen: its size in points and its scale (pixels per
// point). The driver sets it before launch (default 375 x 667 at scale 2);
// screens read it for fonts and geometry. Main run loop thread only.
struct Screen {
  double width = 375;
  double height = 667;
  double scale = 2;

  static Screen& main();
};

}  // namespace quillet::platform
