#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::platform {

// Base64 with the standard alphabet and "=" padding. Stateless; thread-safe.
class Base64 {
 public:
  // `lineLength` 0 gives one line; 64 or 76 break the text after every that
  // many characters with `lineEnding` (none after the last line).
  static std::string encode(std::span<const uint8_t> data, size_t lineLength = 0, std::string_view lineEnding = "\r\n");
  static std::string encode(std::string_view data, size_t lineLength = 0, std::string_view lineEnding = "\r\n") {
    return encode(std::span(reinterpret_cast<const uint8_t*>(data.data()), data.size()), lineLength, lineEnding);
  }

  // Decodes padded Base64. Characters outside the alphabet, misplaced or
  // missing padding give nullopt; with `ignoreLineBreaks`, CR and LF are
  // skipped first.
  static std::optional<std::vector<uint8_t>> decode(std::string_view text, bool ignoreLineBreaks = false);
};

}  // namespace quillet::platform
