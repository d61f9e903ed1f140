#include "platform/crypto/Base64.h"

#include <array>

namespace quillet::platform {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<int8_t, 256> reverseAlphabet() {
  std::array<int8_t, 256> table{};
  table.fill(-1);
  for (int i = 0; i < 64; ++i) table[static_cast<uint8_t>(kAlphabet[i])] = static_cast<int8_t>(i);
  return table;
}
constexpr auto kReverse = reverseAlphabet();

}  // namespace

std::string Base64::encode(std::span<const uint8_t> data, size_t lineLength, std::string_view lineEnding) {
  std::string plain;
  plain.reserve((data.size() + 2) / 3 * 4);
  for (size_t i = 0; i < data.size(); i += 3) {
    uint32_t group = static_cast<uint32_t>(data[i]) << 16;
    if (i + 1 < data.size()) group |= static_cast<uint32_t>(data[i + 1]) << 8;
    if (i + 2 < data.size()) group |= data[i + 2];
    plain.push_back(kAlphabet[(group >> 18) & 63]);
    plain.push_back(kAlphabet[(group >> 12) & 63]);
    plain.push_back(i + 1 < data.size() ? kAlphabet[(group >> 6) & 63] : '=');
    plain.push_back(i + 2 < data.size() ? kAlphabet[group & 63] : '=');
  }
  if (lineLength == 0 || plain.size() <= lineLength) return plain;
  std::string lines;
  lines.reserve(plain.size() + plain.size() / lineLength * lineEnding.size());
  for (size_t i = 0; i < plain.size(); i += lineLength) {
    if (i > 0) lines.append(lineEnding);
    lines.append(plain, i, lineLength);
  }
  return lines;
}

std::optional<std::vector<uint8_t>> Base64::decode(std::string_view text, bool ignoreLineBreaks) {
  std::string clean;
  clean.reserve(text.size());
  for (char c : text) {
    if (ignoreLineBreaks && (c == '\r' || c == '\n')) continue;
    clean.push_back(c);
  }
  if (clean.size() % 4 != 0) return std::nullopt;
  size_t padding = 0;
  if (!clean.empty() && clean.back() == '=') padding = clean[clean.size() - 2] == '=' ? 2 : 1;
  std::vector<uint8_t> out;
  out.reserve(clean.size() / 4 * 3);
  for (size_t i = 0; i < clean.size(); i += 4) {
    bool last = i + 4 == clean.size();
    size_t dataChars = last ? 4 - padding : 4;
    uint32_t group = 0;
    for (size_t k = 0; k < 4; ++k) {
      int v = 0;
      if (k < dataChars) {
        v = kReverse[static_cast<uint8_t>(clean[i + k])];
        if (v < 0) return std::nullopt;
      }
      group = (group << 6) | static_cast<uint32_t>(v);
    }
    out.push_back(static_cast<uint8_t>(group >> 16));
    if (dataChars > 2) out.push_back(static_cast<uint8_t>(group >> 8));
    if (dataChars > 3) out.push_back(static_cast<uint8_t>(group));
  }
  return out;
}

}  // namespace quillet::platform
