#include "platform/image/ImageDecoder.h"

#include <stb/stb_image.h>

#include <climits>
#include <cstring>

namespace quillet::platform {

namespace {

bool startsWith(std::span<const uint8_t> bytes, const char* magic, size_t length) {
  return bytes.size() >= length && std::memcmp(bytes.data(), magic, length) == 0;
}

// The format by its signature; "" for anything else. The decoder library
// would also take formats without a signature (TGA), which would let noise
// pass for a picture, so only these four are let through.
std::string formatOf(std::span<const uint8_t> bytes) {
  if (startsWith(bytes, "\x89PNG\r\n\x1a\n", 8)) return "png";
  if (startsWith(bytes, "\xff\xd8\xff", 3)) return "jpeg";
  if (startsWith(bytes, "GIF87a", 6) || startsWith(bytes, "GIF89a", 6)) return "gif";
  if (startsWith(bytes, "BM", 2)) return "bmp";
  return "";
}

bool fail(Error* error, int64_t code, const std::string& reason) {
  if (error) {
    std::string description = "Image could not be read: ";
    description += reason;
    *error = Error::withDescription(ImageDecoder::kErrorDomain, code, description);
  }
  return false;
}

std::string libraryReason() {
  const char* reason = stbi_failure_reason();  // per thread
  return reason ? reason : "unknown failure";
}

}  // namespace

std::optional<ImageDecoder::Info> ImageDecoder::info(std::span<const uint8_t> bytes, Error* error) {
  Info info;
  info.format = formatOf(bytes);
  if (info.format.empty()) {
    fail(error, kNotAnImage, "unknown format");
    return std::nullopt;
  }
  if (bytes.size() > static_cast<size_t>(INT_MAX)) {
    fail(error, kTooLarge, "data too large");
    return std::nullopt;
  }
  const int length = static_cast<int>(bytes.size());
  if (!stbi_info_from_memory(bytes.data(), length, &info.width, &info.height, &info.componentsPerPixel)) {
    fail(error, kNotAnImage, libraryReason());
    return std::nullopt;
  }
  info.bitsPerComponent = stbi_is_16_bit_from_memory(bytes.data(), length) ? 16 : 8;
  if (info.width <= 0 || info.height <= 0 || info.componentsPerPixel < 1 || info.componentsPerPixel > 4) {
    fail(error, kNotAnImage, "bad header");
    return std::nullopt;
  }
  const size_t pixelBytes = static_cast<size_t>(info.width) * static_cast<size_t>(info.height) *
                            static_cast<size_t>(info.componentsPerPixel) * (info.bitsPerComponent / 8);
  if (info.width > kMaxDimension || info.height > kMaxDimension || pixelBytes > kMaxPixelBytes) {
    fail(error, kTooLarge, "picture too large");
    return std::nullopt;
  }
  return info;
}

std::shared_ptr<const Bitmap> ImageDecoder::decode(std::span<const uint8_t> bytes, Error* error) {
  const auto header = info(bytes, error);
  if (!header) return nullptr;
  const int length = static_cast<int>(bytes.size());
  int width = 0, height = 0, components = 0;
  void* pixels =
      header->bitsPerComponent == 16
          ? static_cast<void*>(stbi_load_16_from_memory(bytes.data(), length, &width, &height, &components, 0))
          : static_cast<void*>(stbi_load_from_memory(bytes.data(), length, &width, &height, &components, 0));
  if (!pixels) {
    fail(error, kDecodeFailed, libraryReason());
    return nullptr;
  }
  auto bitmap = std::make_shared<Bitmap>();
  bitmap->width = width;
  bitmap->height = height;
  bitmap->componentsPerPixel = components;
  bitmap->bitsPerComponent = header->bitsPerComponent;
  const auto* first = static_cast<const uint8_t*>(pixels);
  bitmap->pixels.assign(first, first + bitmap->bytesPerRow() * static_cast<size_t>(height));
  stbi_image_free(pixels);
  return bitmap;
}

}  // namespace quillet::platform
