#include "instanceid/keypair/InstanceIDStringEncoding.h"

#include <bit>
#include <numeric>

#include "platform/value/Format.h"

namespace quillet::instanceid {

namespace {
constexpr const char* kWebsafeBase64Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

bool isAscii(const std::string& text) {
  for (char c : text) {
    if (static_cast<unsigned char>(c) >= 128) return false;
  }
  return true;
}
}  // namespace

InstanceIDStringEncoding InstanceIDStringEncoding::rfc4648Base64WebsafeStringEncoding() {
  InstanceIDStringEncoding encoding = *stringEncodingWithString(kWebsafeBase64Alphabet);
  encoding.setPaddingChar('=');
  encoding.setDoPad(true);
  return encoding;
}

std::optional<InstanceIDStringEncoding> InstanceIDStringEncoding::stringEncodingWithString(
    const std::string& alphabet) {
  const size_t length = alphabet.size();
  if (!isAscii(alphabet) || length < 2 || length > 128 || !std::has_single_bit(length)) return std::nullopt;
  InstanceIDStringEncoding encoding(alphabet, std::countr_zero(length));
  for (size_t i = 0; i < length; ++i) {
    int32_t& entry = encoding.reverseCharMap_[static_cast<unsigned char>(alphabet[i])];
    if (entry != kUnknownChar) return std::nullopt;  // a character twice
    entry = static_cast<int32_t>(i);
  }
  return encoding;
}

InstanceIDStringEncoding::InstanceIDStringEncoding(std::string alphabet, int shift)
    : charMapData_(std::move(alphabet)), shift_(shift), mask_((1 << shift) - 1), padLen_(std::lcm(shift, 8) / shift) {
  reverseCharMap_.fill(kUnknownChar);
}

void InstanceIDStringEncoding::setPaddingChar(char c) {
  paddingChar_ = c;
  const auto index = static_cast<unsigned char>(c);
  if (index < reverseCharMap_.size()) reverseCharMap_[index] = kPaddingChar;
}

std::string InstanceIDStringEncoding::encode(const platform::Value::Bytes& data) const {
  if (data.empty()) return "";
  size_t outLength = (data.size() * 8 + shift_ - 1) / shift_;
  if (doPad_) outLength = (outLength + padLen_ - 1) / padLen_ * padLen_;
  std::string out;
  out.reserve(outLength);
  uint32_t buffer = 0;
  int bitsLeft = 0;
  size_t position = 0;
  while (bitsLeft > 0 || position < data.size()) {
    if (bitsLeft < shift_) {
      if (position < data.size()) {
        buffer = (buffer << 8) | data[position++];
        bitsLeft += 8;
      } else {
        buffer <<= shift_ - bitsLeft;  // zero-fill the last group on the right
        bitsLeft = shift_;
      }
    }
    out.push_back(charMapData_[(buffer >> (bitsLeft - shift_)) & mask_]);
    bitsLeft -= shift_;
    buffer &= (1u << bitsLeft) - 1;
  }
  while (doPad_ && out.size() < outLength) out.push_back(paddingChar_);
  return out;
}

std::optional<platform::Value::Bytes> InstanceIDStringEncoding::decode(const std::string& text) const {
  if (!isAscii(text)) return std::nullopt;
  platform::Value::Bytes out;
  out.reserve(text.size() * shift_ / 8);
  uint32_t buffer = 0;
  int bitsLeft = 0;
  bool expectPad = false;
  for (char c : text) {
    const int32_t value = reverseCharMap_[static_cast<unsigned char>(c)];
    if (value == kIgnoreChar) continue;
    if (value == kPaddingChar) {
      expectPad = true;
      continue;
    }
    if (value == kUnknownChar || expectPad) return std::nullopt;
    buffer = (buffer << shift_) | (static_cast<uint32_t>(value) & mask_);
    bitsLeft += shift_;
    if (bitsLeft >= 8) {
      out.push_back(static_cast<uint8_t>(buffer >> (bitsLeft - 8)));
      bitsLeft -= 8;
      buffer &= (1u << bitsLeft) - 1;
    }
  }
  if (bitsLeft > 0 && buffer != 0) return std::nullopt;
  return out;
}

std::string InstanceIDStringEncoding::description() const {
  return platform::format("<Base%d StringEncoder: %@>", static_cast<int>(charMapData_.size()), charMapData_);
}

}  // namespace quillet::instanceid
