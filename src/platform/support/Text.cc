#include "platform/support/Text.h"

namespace quillet::platform {

std::string trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return "";
  return std::string(text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1));
}

std::string hexString(std::span<const uint8_t> bytes, bool upperCase) {
  const char* digits = upperCase ? "0123456789ABCDEF" : "0123456789abcdef";
  std::string out;
  out.reserve(bytes.size() * 2);
  for (uint8_t byte : bytes) {
    out.push_back(digits[byte >> 4]);
    out.push_back(digits[byte & 0x0f]);
  }
  return out;
}

}  // namespace quillet::platform
