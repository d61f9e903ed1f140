#include "platform/image/BitmapPixels.h"

#include <cstring>

#include "platform/image/ImageDecoder.h"

namespace quillet::platform {

namespace {

// Component `c` of pixel `i` as 8 bits.
uint8_t component8(const Bitmap& bitmap, size_t i, int c) {
  const size_t index = i * static_cast<size_t>(bitmap.componentsPerPixel) + static_cast<size_t>(c);
  if (bitmap.bitsPerComponent == 16) {
    uint16_t wide = 0;
    std::memcpy(&wide, bitmap.pixels.data() + index * 2, sizeof wide);
    return static_cast<uint8_t>(wide >> 8);
  }
  return bitmap.pixels[index];
}

}  // namespace

Bitmap BitmapPixels::rgba8(const Bitmap& bitmap) {
  Bitmap out;
  out.width = bitmap.width;
  out.height = bitmap.height;
  out.componentsPerPixel = 4;
  out.bitsPerComponent = 8;
  const size_t count = static_cast<size_t>(bitmap.width) * static_cast<size_t>(bitmap.height);
  const size_t needed = count * static_cast<size_t>(bitmap.componentsPerPixel) * (bitmap.bitsPerComponent / 8);
  if (bitmap.pixels.size() < needed || bitmap.componentsPerPixel < 1 || bitmap.componentsPerPixel > 4) {
    out.width = out.height = 0;
    return out;
  }
  out.pixels.resize(count * 4);
  const int n = bitmap.componentsPerPixel;
  for (size_t i = 0; i < count; ++i) {
    uint8_t* p = &out.pixels[i * 4];
    if (n <= 2) {
      p[0] = p[1] = p[2] = component8(bitmap, i, 0);
      p[3] = n == 2 ? component8(bitmap, i, 1) : 255;
    } else {
      for (int c = 0; c < 3; ++c) p[c] = component8(bitmap, i, c);
      p[3] = n == 4 ? component8(bitmap, i, 3) : 255;
    }
  }
  return out;
}

std::shared_ptr<const Bitmap> BitmapPixels::pixelsOf(const Image& image, Error* error) {
  if (image.bitmap()) return image.bitmap();
  return ImageDecoder::decode(image.data(), error);
}

}  // namespace quillet::platform
