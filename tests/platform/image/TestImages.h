#pragma once

#include <stb/stb_image_write.h>
#include <zlib.h>

#include <cstdint>
#include <string>
#include <vector>

namespace quillet::platform::test {

using Bytes = std::vector<uint8_t>;

// Encoders for the pictures the image tests read: PNG, JPEG and BMP through
// the encoder half of the decoding library, a 16-bit PNG and a GIF by hand.

inline Bytes pixelsRGB(int width, int height) {
  Bytes pixels(static_cast<size_t>(width) * height * 3);
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>((i * 7) % 251);
  return pixels;
}

inline void appendTo(void* context, void* data, int size) {
  auto* out = static_cast<Bytes*>(context);
  const auto* first = static_cast<const uint8_t*>(data);
  out->insert(out->end(), first, first + size);
}

inline Bytes png(int width, int height) {
  Bytes out;
  const Bytes pixels = pixelsRGB(width, height);
  stbi_write_png_to_func(appendTo, &out, width, height, 3, pixels.data(), width * 3);
  return out;
}

inline Bytes jpeg(int width, int height, int quality = 85) {
  Bytes out;
  const Bytes pixels = pixelsRGB(width, height);
  stbi_write_jpg_to_func(appendTo, &out, width, height, 3, pixels.data(), quality);
  return out;
}

inline Bytes bmp(int width, int height) {
  Bytes out;
  const Bytes pixels = pixelsRGB(width, height);
  stbi_write_bmp_to_func(appendTo, &out, width, height, 3, pixels.data());
  return out;
}

// A 16-bit grey PNG; each sample big-endian as the format stores it.
inline Bytes png16(int width, int height) {
  auto be32 = [](Bytes& out, uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<uint8_t>(v >> shift));
  };
  auto chunk = [&](Bytes& out, const char* type, const Bytes& body) {
    be32(out, static_cast<uint32_t>(body.size()));
    Bytes typed(type, type + 4);
    typed.insert(typed.end(), body.begin(), body.end());
    out.insert(out.end(), typed.begin(), typed.end());
    be32(out, static_cast<uint32_t>(crc32(0, typed.data(), static_cast<uInt>(typed.size()))));
  };
  Bytes raw;
  for (int y = 0; y < height; ++y) {
    raw.push_back(0);  // no filter
    for (int x = 0; x < width; ++x) {
      raw.push_back(static_cast<uint8_t>(x));
      raw.push_back(static_cast<uint8_t>(y));
    }
  }
  uLongf packedSize = compressBound(static_cast<uLong>(raw.size()));
  Bytes packed(packedSize);
  compress(packed.data(), &packedSize, raw.data(), static_cast<uLong>(raw.size()));
  packed.resize(packedSize);
  Bytes header;
  be32(header, static_cast<uint32_t>(width));
  be32(header, static_cast<uint32_t>(height));
  header.insert(header.end(), {16, 0, 0, 0, 0});  // depth 16, grey, deflate, no filter set, no interlace
  Bytes out = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
  chunk(out, "IHDR", header);
  chunk(out, "IDAT", packed);
  chunk(out, "IEND", {});
  return out;
}

// One white pixel.
inline Bytes gif() {
  return {'G', 'I',  'F', '8', '9', 'a', 1, 0, 1, 0, 0x80, 0, 0, 0xff, 0xff, 0xff, 0,   0,
          0,   0x2c, 0,   0,   0,   0,   1, 0, 1, 0, 0,    2, 2, 0x44, 1,    0,    0x3b};
}

inline std::string text(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

}  // namespace quillet::platform::test
