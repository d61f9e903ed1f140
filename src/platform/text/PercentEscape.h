#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillet::platform {

// Percent escapes of UTF-8 text. Stateless; thread-safe.
class PercentEscape {
 public:
  // Letters, digits and "-._~".
  static constexpr std::string_view kUnreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  // The characters the phone's legacy escaping left alone by default: the
  // unreserved ones, "!*'()", the reserved ";/?:@&=+$," and "#".
  static constexpr std::string_view kLegacyUrlLegal =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!*'();/?:@&=+$,#";

  // Replaces every byte that is not an ASCII character of `allowed` by "%XX"
  // (upper-case hex); non-ASCII text is escaped byte by byte of its UTF-8.
  static std::string escape(std::string_view text, std::string_view allowed);

  // `base` without the characters of `remove`, plus those of `add`: e.g.
  // allowedSet(kLegacyUrlLegal, ":/?&=;+!@#$()',*", "[].").
  static std::string allowedSet(std::string_view base, std::string_view remove, std::string_view add = {});

  // Decodes "%XX" sequences. A "%" without two hex digits, or a result that
  // is not valid UTF-8, gives nullopt. "+" stays "+".
  static std::optional<std::string> unescape(std::string_view text);
};

}  // namespace quillet::platform
