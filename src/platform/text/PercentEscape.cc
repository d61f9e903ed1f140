#include "platform/text/PercentEscape.h"

#include <unicode/utf8.h>

namespace quillet::platform {
namespace {

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool isValidUtf8(const std::string& text) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  int32_t length = static_cast<int32_t>(text.size());
  for (int32_t i = 0; i < length;) {
    UChar32 c;
    U8_NEXT(bytes, i, length, c);
    if (c < 0) return false;
  }
  return true;
}

}  // namespace

std::string PercentEscape::escape(std::string_view text, std::string_view allowed) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80 && allowed.find(c) != std::string_view::npos) {
      out.push_back(c);
    } else {
      out.push_back('%');
      out.push_back(kHex[byte >> 4]);
      out.push_back(kHex[byte & 0x0F]);
    }
  }
  return out;
}

std::string PercentEscape::allowedSet(std::string_view base, std::string_view remove, std::string_view add) {
  std::string out;
  for (char c : base) {
    if (remove.find(c) == std::string_view::npos) out.push_back(c);
  }
  out.append(add);
  return out;
}

std::optional<std::string> PercentEscape::unescape(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      out.push_back(text[i]);
      continue;
    }
    if (i + 2 >= text.size()) return std::nullopt;
    int high = hexValue(text[i + 1]);
    int low = hexValue(text[i + 2]);
    if (high < 0 || low < 0) return std::nullopt;
    out.push_back(static_cast<char>(high * 16 + low));
    i += 2;
  }
  if (!isValidUtf8(out)) return std::nullopt;
  return out;
}

}  // namespace quillet::platform
