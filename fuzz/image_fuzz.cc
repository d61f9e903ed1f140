// Reads arbitrary bytes as an image: the header, then the whole picture. A
// picture that decodes must agree with its header and hold exactly its pixels.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

#include "platform/image/ImageDecoder.h"

using quillet::platform::Error;
using quillet::platform::ImageDecoder;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::span<const uint8_t> bytes(data, size);
  Error error;
  const auto info = ImageDecoder::info(bytes, &error);
  if (!info) {
    if (error.domain != ImageDecoder::kErrorDomain) std::abort();
    return 0;
  }
  const auto bitmap = ImageDecoder::decode(bytes, &error);
  if (!bitmap) return 0;
  if (bitmap->width != info->width || bitmap->height != info->height ||
      bitmap->bitsPerComponent != info->bitsPerComponent ||
      bitmap->pixels.size() != bitmap->bytesPerRow() * static_cast<size_t>(bitmap->height)) {
    std::fprintf(stderr, "header %dx%d/%d, picture %dx%d/%d\n", info->width, info->height, info->bitsPerComponent,
                 bitmap->width, bitmap->height, bitmap->bitsPerComponent);
    std::abort();
  }
  return 0;
}
