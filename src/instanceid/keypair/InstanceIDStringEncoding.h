#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/value/Value.h"

namespace quillet::instanceid {

// Turns bytes into text over an alphabet of 2^k ASCII characters (k bits a
// character, most significant first) and back, with optional padding to whole
// groups. A plain value: copyable; const operations are safe from any thread.
class InstanceIDStringEncoding {
 public:
  // The websafe Base64 alphabet of RFC 4648 ("-" and "_"), padding "=", padding on.
  static InstanceIDStringEncoding rfc4648Base64WebsafeStringEncoding();
  // An encoder over `alphabet`; nullopt unless the alphabet is ASCII, has a
  // power-of-two length from 2 to 128 and no character twice. Padding off.
  static std::optional<InstanceIDStringEncoding> stringEncodingWithString(const std::string& alphabet);

  bool doPad() const { return doPad_; }
  void setDoPad(bool doPad) { doPad_ = doPad; }
  // The padding character; from now on it reads as padding when decoding.
  void setPaddingChar(char c);

  // "" for no bytes; the last group is zero-filled, the tail padded when doPad().
  std::string encode(const platform::Value::Bytes& data) const;
  // nullopt on non-ASCII text, an unknown character, a data character after
  // padding, or non-zero bits left over in the last character.
  std::optional<platform::Value::Bytes> decode(const std::string& text) const;

  // "<Base%d StringEncoder: %@>" with the alphabet size and the alphabet.
  std::string description() const;

 private:
  explicit InstanceIDStringEncoding(std::string alphabet, int shift);

  // Reverse-map entries that are not character indexes.
  static constexpr int32_t kUnknownChar = -1;
  static constexpr int32_t kPaddingChar = -2;
  static constexpr int32_t kIgnoreChar = -3;

  std::string charMapData_;
  std::array<int32_t, 128> reverseCharMap_{};
  int shift_ = 0;
  int mask_ = 0;
  bool doPad_ = false;
  char paddingChar_ = '=';
  int padLen_ = 0;
};

}  // namespace quillet::instanceid
