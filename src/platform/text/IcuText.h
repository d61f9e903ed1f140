#pragma once

#include <string>
#include <string_view>

#include <unicode/unistr.h>

namespace quillet::platform {

// Conversions between UTF-8 and ICU's UTF-16 strings, shared by the text
// facility's ICU wrappers. Invalid UTF-8 becomes U+FFFD.
inline icu::UnicodeString toIcu(std::string_view text) {
  return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

inline std::string fromIcu(const icu::UnicodeString& text) {
  std::string out;
  text.toUTF8String(out);
  return out;
}

}  // namespace quillet::platform
