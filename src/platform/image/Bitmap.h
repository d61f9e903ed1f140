#pragma once

#include <cstdint>
#include <vector>

namespace quillet::platform {

// A decoded picture in memory: rows packed top to bottom, components
// interleaved (1 grey, 2 grey+alpha, 3 RGB, 4 RGBA), each component
// `bitsPerComponent` wide (8, or 16 in native byte order). Plain data,
// shared as std::shared_ptr<const Bitmap> once made.
struct Bitmap {
  int width = 0;
  int height = 0;
  int componentsPerPixel = 4;
  int bitsPerComponent = 8;
  std::vector<uint8_t> pixels;

  size_t bytesPerRow() const {
    return static_cast<size_t>(width) * static_cast<size_t>(componentsPerPixel) * (bitsPerComponent / 8);
  }
};

}  // namespace quillet::platform
