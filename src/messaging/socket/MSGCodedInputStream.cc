#include "messaging/socket/MSGCodedInputStream.h"

namespace quillet::messaging {

bool MSGCodedInputStream::readTag(int8_t* tag) {
  if (offset_ >= data_.size()) return false;
  *tag = static_cast<int8_t>(data_[offset_++]);
  return true;
}

bool MSGCodedInputStream::readLength(int32_t* length) {
  constexpr size_t kValueBytes = 5;
  constexpr size_t kMaxBytes = 10;
  uint32_t value = 0;
  size_t position = offset_;
  for (size_t i = 0; i < kMaxBytes; ++i) {
    if (position >= data_.size()) return false;
    uint8_t byte = data_[position++];
    if (i < kValueBytes) value |= uint32_t(byte & 0x7f) << (7 * i);
    if ((byte & 0x80) == 0) {
      offset_ = position;
      *length = static_cast<int32_t>(value);
      return true;
    }
  }
  return false;  // ten bytes and the last still continues
}

bool MSGCodedInputStream::readDataWithLength(uint32_t length, std::span<const uint8_t>* out) {
  if (data_.size() - offset_ < length) return false;
  *out = data_.subspan(offset_, length);
  offset_ += length;
  return true;
}

}  // namespace quillet::messaging
