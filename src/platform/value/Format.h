#pragma once

#include <array>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/value/Value.h"

namespace quillet::platform {

// Formats in the manner of the phone's string formatting:
//   "%@"  the argument's description(): "(null)" for nil, "<null>" for the null object;
//   "%s"  a string as it stands (any other value by its description);
//   "%d %i" (with h, hh, l, ll, q, z, j, t), "%u %o %x %X", "%c": the integerValue()
//         converted to the C type the length names, then printed by snprintf;
//   "%f %F %e %E %g %G %a %A": the doubleValue() printed by snprintf;
//   "%%"  a percent sign.
// Flags (-+ #0'), width and precision (also "*", taken from the arguments)
// mean what they mean in C. A missing argument formats as nil would; a
// conversion that is not one of the above is written as it stands and takes
// no argument. Pure function, thread-safe.
std::string formatValues(std::string_view fmt, std::span<const Value> args);

// format("%@/%d", {Value("x"), 3})
inline std::string format(std::string_view fmt, std::initializer_list<Value> args) {
  return formatValues(fmt, std::span<const Value>(args.begin(), args.size()));
}

// format("%@/%d", "x", 3): each argument is wrapped into a Value. Call it
// qualified (platform::format) where std::format could be found by lookup.
template <typename... Args>
std::string format(std::string_view fmt, Args&&... args) {
  if constexpr (sizeof...(Args) == 0) {
    return formatValues(fmt, {});
  } else {
    const std::array<Value, sizeof...(Args)> values{Value(std::forward<Args>(args))...};
    return formatValues(fmt, values);
  }
}

}  // namespace quillet::platform
