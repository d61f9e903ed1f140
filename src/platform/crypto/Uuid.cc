#include "platform/crypto/Uuid.h"

#include <openssl/rand.h>

#include <array>
#include <cctype>
#include <cstdint>
#include <random>

namespace quillet::platform {
namespace {

constexpr size_t kTextLength = 36;

bool isDashPosition(size_t index) { return index == 8 || index == 13 || index == 18 || index == 23; }

}  // namespace

std::string uuidString() {
  std::array<uint8_t, 16> bytes{};
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
    // The random source failed (it does not on a working system): fall back to the OS's.
    std::random_device device;
    for (auto& byte : bytes) byte = static_cast<uint8_t>(device());
  }
  bytes[6] = static_cast<uint8_t>((bytes[6] & 0x0f) | 0x40);  // version 4
  bytes[8] = static_cast<uint8_t>((bytes[8] & 0x3f) | 0x80);  // the standard variant
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(kTextLength);
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text.push_back('-');
    text.push_back(kDigits[bytes[i] >> 4]);
    text.push_back(kDigits[bytes[i] & 0x0f]);
  }
  return text;
}

bool isUuidString(const std::string& text) {
  if (text.size() != kTextLength) return false;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool ok = isDashPosition(i) ? text[i] == '-' : std::isxdigit(static_cast<unsigned char>(text[i])) != 0;
    if (!ok) return false;
  }
  return true;
}

}  // namespace quillet::platform
