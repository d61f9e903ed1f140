#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/image/Bitmap.h"
#include "platform/value/Error.h"

namespace quillet::platform {

// Reads still images (PNG, JPEG, GIF, BMP) from encoded bytes. Stateless and
// safe to call from any number of threads at once. Input is untrusted: a
// failure is an Error in kErrorDomain with the reason in its description,
// and pictures larger than kMaxDimension per side or kMaxPixelBytes decoded
// are refused before any pixel memory is taken.
class ImageDecoder {
 public:
  static constexpr const char* kErrorDomain = "quillet.platform.image";
  enum ErrorCode : int64_t { kNotAnImage = 1, kTooLarge = 2, kDecodeFailed = 3 };
  static constexpr int kMaxDimension = 16384;
  static constexpr size_t kMaxPixelBytes = size_t{256} << 20;

  // What the header tells.
  struct Info {
    int width = 0;
    int height = 0;
    int bitsPerComponent = 8;    // 8, or 16 for deep PNGs
    int componentsPerPixel = 0;  // as stored: 1 grey, 2 grey+alpha, 3 RGB, 4 RGBA
    std::string format;          // "png", "jpeg", "gif" or "bmp"
  };

  // The header only; nullopt and `error` when the bytes are no image of a
  // known format or are too large to decode.
  static std::optional<Info> info(std::span<const uint8_t> bytes, Error* error = nullptr);
  // The whole picture (the first frame of a GIF), components and depth as
  // stored; null and `error` on failure.
  static std::shared_ptr<const Bitmap> decode(std::span<const uint8_t> bytes, Error* error = nullptr);
};

}  // namespace quillet::platform
