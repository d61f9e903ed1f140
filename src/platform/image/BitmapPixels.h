#pragma once

#include <memory>

#include "platform/image/Bitmap.h"
#include "platform/image/Image.h"
#include "platform/value/Error.h"

namespace quillet::platform {

// Conversions between the pixel layouts a Bitmap may hold. Stateless;
// callable from any thread.
class BitmapPixels {
 public:
  // The same picture as 8-bit RGBA (grey spread to RGB, missing alpha opaque,
  // 16-bit components cut to their high byte).
  static Bitmap rgba8(const Bitmap& bitmap);
  // The pixels of an image: its bitmap when decoded, else its bytes decoded;
  // null and `error` when they cannot be read.
  static std::shared_ptr<const Bitmap> pixelsOf(const Image& image, Error* error = nullptr);
};

}  // namespace quillet::platform
