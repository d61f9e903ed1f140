#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::platform {

// Property lists in XML and binary form, to and from Value. The types map
// one to one: dictionary, array, string, integer, real (double), boolean,
// data (bytes) and date; nil and the null object have no form in a property
// list. Dates are kept to the microsecond in the binary form and to the
// second in XML (as that form writes them). Stateless; callable from any thread.
class PropertyList {
 public:
  enum class Format { XML, Binary };

  // Parses either form (told apart by the binary header). Malformed input
  // gives nil and `error` (domain errorDomain, code readCorruptError); it
  // never crashes. `format`, when given, receives the form that was read.
  static Value read(std::string_view data, Error* error = nullptr, Format* format = nullptr);

  // Encodes `value` in `format`. A value that is not a property list (see
  // isPropertyList) gives nullopt and `error` (code writeInvalidError).
  static std::optional<std::string> write(const Value& value, Format format, Error* error = nullptr);

  // True when `value` and everything in it can be written: no nil, no null
  // object, text (values and keys) in UTF-8 without NUL, dates within the
  // format's 32-bit seconds around 2001, nesting no deeper than maxDepth.
  // Reading holds text to the same rule.
  static bool isPropertyList(const Value& value);

  static constexpr const char* errorDomain = "quillet.platform.plist";
  static constexpr int64_t readCorruptError = 3840;
  static constexpr int64_t writeInvalidError = 3851;
  static constexpr int maxDepth = 512;
};

}  // namespace quillet::platform
