#pragma once

#include <string>

namespace quillet::platform {

// A font by name and point size ("System-Medium", 17). Plain data; the
// screen logic that picks fonts decides the names.
struct Font {
  std::string name;
  double size = 0;

  bool operator==(const Font&) const = default;
};

}  // namespace quillet::platform
