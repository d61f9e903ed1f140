#include "platform/value/NumberText.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace quillet::platform {

std::string doubleText(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  if (value == 0) return std::signbit(value) ? "-0" : "0";

  // Shortest round-trip digits in scientific form: "d.ddde[+-]XX".
  char sci[64];
  auto result = std::to_chars(sci, sci + sizeof sci, value, std::chars_format::scientific);
  std::string text(sci, result.ptr);
  bool negative = text[0] == '-';
  size_t e = text.find('e');
  int exponent = std::stoi(text.substr(e + 1));
  std::string digits;
  for (size_t i = negative ? 1 : 0; i < e; ++i) {
    if (text[i] != '.') digits.push_back(text[i]);
  }

  std::string out = negative ? "-" : "";
  if (exponent < -4 || exponent >= 17) {
    out += digits[0];
    if (digits.size() > 1) out.append(".").append(digits, 1);
    char exp[16];
    std::snprintf(exp, sizeof exp, "e%c%02d", exponent < 0 ? '-' : '+', std::abs(exponent));
    return out + exp;
  }
  if (exponent < 0) return out + "0." + std::string(static_cast<size_t>(-exponent - 1), '0') + digits;
  size_t whole = static_cast<size_t>(exponent) + 1;
  if (digits.size() <= whole) return out + digits + std::string(whole - digits.size(), '0');
  return out + digits.substr(0, whole) + "." + digits.substr(whole);
}

size_t utf16Length(const std::string& text) {
  size_t units = 0;
  size_t i = 0;
  while (i < text.size()) {
    auto byte = static_cast<unsigned char>(text[i]);
    size_t length = byte < 0x80 ? 1 : (byte >> 5) == 0x6 ? 2 : (byte >> 4) == 0xE ? 3 : (byte >> 3) == 0x1E ? 4 : 0;
    bool wellFormed = length > 0 && i + length <= text.size();
    for (size_t k = 1; wellFormed && k < length; ++k) {
      wellFormed = (static_cast<unsigned char>(text[i + k]) & 0xC0) == 0x80;
    }
    if (!wellFormed) length = 1;
    units += length == 4 && wellFormed ? 2 : 1;
    i += length;
  }
  return units;
}

}  // namespace quillet::platform
