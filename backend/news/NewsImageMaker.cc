#include "backend/news/NewsImageMaker.h"

#include <jpeglib.h>
#include <zlib.h>

#include <cstdio>
#include <vector>

#include "platform/log/Log.h"

namespace quillet::backend {
namespace {

// Rows of packed RGB pixels.
std::vector<uint8_t> drawPixels(uint32_t seed, int width, int height) {
  const uint8_t r = static_cast<uint8_t>(60 + (seed * 53) % 180);
  const uint8_t g = static_cast<uint8_t>(60 + (seed * 97) % 180);
  const uint8_t b = static_cast<uint8_t>(60 + (seed * 29) % 180);
  std::vector<uint8_t> pixels(static_cast<size_t>(width) * height * 3);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const bool band = ((x + y) / 6) % 2 == 0;
      uint8_t* p = &pixels[(static_cast<size_t>(y) * width + x) * 3];
      p[0] = band ? r : static_cast<uint8_t>(255 - r / 2);
      p[1] = band ? g : static_cast<uint8_t>(255 - g / 2);
      p[2] = band ? b : static_cast<uint8_t>(255 - b / 2);
    }
  }
  return pixels;
}

void putBigEndian32(std::string& out, uint32_t v) {
  out.push_back(static_cast<char>(v >> 24));
  out.push_back(static_cast<char>(v >> 16));
  out.push_back(static_cast<char>(v >> 8));
  out.push_back(static_cast<char>(v));
}

void putChunk(std::string& out, const char* type, const std::string& data) {
  putBigEndian32(out, static_cast<uint32_t>(data.size()));
  std::string typed = std::string(type, 4) + data;
  out += typed;
  putBigEndian32(out, static_cast<uint32_t>(
                          crc32(0, reinterpret_cast<const Bytef*>(typed.data()), static_cast<uInt>(typed.size()))));
}

}  // namespace

std::string NewsImageMaker::png(uint32_t seed, int width, int height) {
  const std::vector<uint8_t> pixels = drawPixels(seed, width, height);
  // Each scanline starts with filter type 0 (none).
  std::string raw;
  const size_t rowBytes = static_cast<size_t>(width) * 3;
  for (int y = 0; y < height; ++y) {
    raw.push_back('\0');
    raw.append(reinterpret_cast<const char*>(&pixels[y * rowBytes]), rowBytes);
  }
  uLongf packedSize = compressBound(static_cast<uLong>(raw.size()));
  std::string packed(packedSize, '\0');
  if (compress2(reinterpret_cast<Bytef*>(packed.data()), &packedSize, reinterpret_cast<const Bytef*>(raw.data()),
                static_cast<uLong>(raw.size()), Z_BEST_COMPRESSION) != Z_OK) {
    platform::Log::write("news server: PNG compression failed");
    return {};
  }
  packed.resize(packedSize);

  std::string header;
  putBigEndian32(header, static_cast<uint32_t>(width));
  putBigEndian32(header, static_cast<uint32_t>(height));
  header += std::string("\x08\x02\x00\x00\x00", 5);  // 8 bits, RGB, deflate, no filter, no interlace

  std::string out("\x89PNG\r\n\x1a\n", 8);
  putChunk(out, "IHDR", header);
  putChunk(out, "IDAT", packed);
  putChunk(out, "IEND", {});
  return out;
}

std::string NewsImageMaker::jpeg(uint32_t seed, int width, int height, int quality) {
  std::vector<uint8_t> pixels = drawPixels(seed, width, height);
  jpeg_compress_struct cinfo{};
  jpeg_error_mgr jerr{};
  cinfo.err = jpeg_std_error(&jerr);
  jpeg_create_compress(&cinfo);
  unsigned char* buffer = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&cinfo, &buffer, &size);
  cinfo.image_width = static_cast<JDIMENSION>(width);
  cinfo.image_height = static_cast<JDIMENSION>(height);
  cinfo.input_components = 3;
  cinfo.in_color_space = JCS_RGB;
  jpeg_set_defaults(&cinfo);
  jpeg_set_quality(&cinfo, quality, TRUE);
  jpeg_start_compress(&cinfo, TRUE);
  while (cinfo.next_scanline < cinfo.image_height) {
    JSAMPROW row = &pixels[static_cast<size_t>(cinfo.next_scanline) * width * 3];
    jpeg_write_scanlines(&cinfo, &row, 1);
  }
  jpeg_finish_compress(&cinfo);
  jpeg_destroy_compress(&cinfo);
  std::string out(reinterpret_cast<const char*>(buffer), size);
  free(buffer);
  return out;
}

}  // namespace quillet::backend
