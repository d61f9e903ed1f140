#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "platform/image/Bitmap.h"
#include "platform/image/Image.h"
#include "platform/value/Error.h"

namespace quillet::platform {

// Writes still images: PNG (lossless, with alpha) and JPEG (opaque, at a
// quality from 0.0 to 1.0; 1.0 is the best the encoder offers, 100). Any
// bitmap layout is accepted. A failure is an Error in ImageDecoder's domain
// with the code kEncodeFailed. Stateless; callable from any thread.
class ImageEncoder {
 public:
  static constexpr int64_t kEncodeFailed = 4;

  static std::optional<std::vector<uint8_t>> PNGRepresentation(const Bitmap& bitmap, Error* error = nullptr);
  static std::optional<std::vector<uint8_t>> PNGRepresentation(const Image& image, Error* error = nullptr);
  // Quality is clamped to 0.0..1.0; alpha is dropped.
  static std::optional<std::vector<uint8_t>> JPEGRepresentation(const Bitmap& bitmap, double quality,
                                                                Error* error = nullptr);
  static std::optional<std::vector<uint8_t>> JPEGRepresentation(const Image& image, double quality,
                                                                Error* error = nullptr);
  // The PNG written to `path` atomically; false and `error` on failure, the old file left as it was.
  static bool writePNG(const Bitmap& bitmap, const std::filesystem::path& path, Error* error = nullptr);
};

}  // namespace quillet::platform
