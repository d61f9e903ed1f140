#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace quillet::messaging {

// A bounds-checked reader over bytes it does not own (they must outlive it),
// used to parse a frame header. Every read that lacks bytes returns false
// and leaves the position where it was, which the caller takes for a frame
// that is not complete yet.
class MSGCodedInputStream {
 public:
  explicit MSGCodedInputStream(std::span<const uint8_t> data) : data_(data) {}

  // One byte, as a signed byte.
  bool readTag(int8_t* tag);
  // A base-128 varint cut to 32 bits. Bytes after the fifth are skipped up to
  // the tenth; a tenth byte with its top bit set is a failure.
  bool readLength(int32_t* length);
  // `length` bytes as a view into the data.
  bool readDataWithLength(uint32_t length, std::span<const uint8_t>* out);
  // Bytes consumed.
  size_t offset() const { return offset_; }

 private:
  std::span<const uint8_t> data_;
  size_t offset_ = 0;
};

}  // namespace quillet::messaging
