#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/image/Bitmap.h"
#include "platform/value/ValueObject.h"

namespace quillet::platform {

// The platform's image object: a picture of a pixel size at a scale (pixels
// per point), either still encoded (the bytes, with the header read) or
// decoded into a Bitmap. Immutable once made; shared between threads as
// std::shared_ptr<const Image>, and carried in a Value (Value::object).
class Image : public ValueObject {
 public:
  // From encoded bytes, reading the header only; null when the bytes are no
  // image the platform can read. A scale of 0 or less counts as 1.
  static std::shared_ptr<const Image> imageWithData(std::span<const uint8_t> bytes, double scale);
  // From a decoded picture; null for a null bitmap.
  static std::shared_ptr<const Image> imageWithBitmap(std::shared_ptr<const Bitmap> bitmap, double scale,
                                                      std::string format = "");

  int pixelWidth() const { return pixelWidth_; }
  int pixelHeight() const { return pixelHeight_; }
  // The size in points: pixels / scale.
  double width() const { return pixelWidth_ / scale_; }
  double height() const { return pixelHeight_ / scale_; }
  double scale() const { return scale_; }
  int bitsPerComponent() const { return bitsPerComponent_; }
  // "png", "jpeg", "gif", "bmp", or "" when made from a bitmap of unknown origin.
  const std::string& format() const { return format_; }

  bool isDecoded() const { return bitmap_ != nullptr; }
  // The pixels when decoded, else null.
  const std::shared_ptr<const Bitmap>& bitmap() const { return bitmap_; }
  // The encoded bytes when made from data, else empty.
  const std::vector<uint8_t>& data() const { return data_; }
  // Memory the image holds (pixels or encoded bytes), for cache accounting.
  size_t byteCost() const;

  // "<Image 160x120 @2x>" (pixel size, scale).
  std::string description() const override;

 private:
  Image() = default;

  int pixelWidth_ = 0;
  int pixelHeight_ = 0;
  double scale_ = 1;
  int bitsPerComponent_ = 8;
  std::string format_;
  std::shared_ptr<const Bitmap> bitmap_;
  std::vector<uint8_t> data_;
};

}  // namespace quillet::platform
