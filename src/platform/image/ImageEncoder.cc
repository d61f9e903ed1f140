#include "platform/image/ImageEncoder.h"

// libjpeg's header needs size_t and FILE declared first.
#include <jpeglib.h>
#include <cstddef>
#include <cstdio>

#include <algorithm>
#include <csetjmp>
#include <cstdlib>
#include <string_view>

#include "platform/files/AtomicFile.h"
#include "platform/image/BitmapPixels.h"
#include "platform/image/CairoBitmap.h"
#include "platform/image/ImageDecoder.h"

namespace quillet::platform {

namespace {

std::nullopt_t fail(Error* error, const std::string& reason) {
  if (error) {
    *error = Error::withDescription(ImageDecoder::kErrorDomain, ImageEncoder::kEncodeFailed, reason);
  }
  return std::nullopt;
}

cairo_status_t appendBytes(void* closure, const unsigned char* data, unsigned int length) {
  auto* out = static_cast<std::vector<uint8_t>*>(closure);
  out->insert(out->end(), data, data + length);
  return CAIRO_STATUS_SUCCESS;
}

// libjpeg reports fatal errors through a callback that must not return: it
// jumps back to the encoder's set-up point.
struct JpegFailure {
  jpeg_error_mgr manager;
  std::jmp_buf back;
  char message[JMSG_LENGTH_MAX];
};

[[noreturn]] void jpegErrorExit(j_common_ptr info) {
  auto* failure = reinterpret_cast<JpegFailure*>(info->err);
  (*info->err->format_message)(info, failure->message);
  std::longjmp(failure->back, 1);
}

// Encodes packed RGB rows. Kept free of C++ objects with destructors, since
// a libjpeg failure leaves it by longjmp.
bool encodeRgb(const uint8_t* rgb, int width, int height, int quality, unsigned char** out, unsigned long* size,
               char* message) {
  jpeg_compress_struct info;
  JpegFailure failure;
  info.err = jpeg_std_error(&failure.manager);
  failure.manager.error_exit = jpegErrorExit;
  if (setjmp(failure.back)) {
    std::snprintf(message, JMSG_LENGTH_MAX, "%s", failure.message);
    jpeg_destroy_compress(&info);
    return false;
  }
  jpeg_create_compress(&info);
  jpeg_mem_dest(&info, out, size);
  info.image_width = static_cast<JDIMENSION>(width);
  info.image_height = static_cast<JDIMENSION>(height);
  info.input_components = 3;
  info.in_color_space = JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, quality, TRUE);
  jpeg_start_compress(&info, TRUE);
  while (info.next_scanline < info.image_height) {
    JSAMPROW row = const_cast<JSAMPROW>(rgb + static_cast<size_t>(info.next_scanline) * static_cast<size_t>(width) * 3);
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  return true;
}

}  // namespace

std::optional<std::vector<uint8_t>> ImageEncoder::PNGRepresentation(const Bitmap& bitmap, Error* error) {
  CairoBitmap::Surface surface = CairoBitmap::surfaceFromBitmap(bitmap);
  if (!surface) return fail(error, "PNG: the bitmap is empty or malformed");
  std::vector<uint8_t> out;
  const cairo_status_t status = cairo_surface_write_to_png_stream(surface.get(), appendBytes, &out);
  if (status != CAIRO_STATUS_SUCCESS) return fail(error, std::string("PNG: ") + cairo_status_to_string(status));
  return out;
}

std::optional<std::vector<uint8_t>> ImageEncoder::PNGRepresentation(const Image& image, Error* error) {
  auto pixels = BitmapPixels::pixelsOf(image, error);
  if (!pixels) return std::nullopt;
  return PNGRepresentation(*pixels, error);
}

std::optional<std::vector<uint8_t>> ImageEncoder::JPEGRepresentation(const Bitmap& bitmap, double quality,
                                                                     Error* error) {
  const Bitmap rgba = BitmapPixels::rgba8(bitmap);
  if (rgba.width <= 0 || rgba.height <= 0) return fail(error, "JPEG: the bitmap is empty or malformed");
  std::vector<uint8_t> rgb(static_cast<size_t>(rgba.width) * static_cast<size_t>(rgba.height) * 3);
  for (size_t i = 0, n = rgb.size() / 3; i < n; ++i) std::copy_n(&rgba.pixels[i * 4], 3, &rgb[i * 3]);
  const int level = static_cast<int>(std::clamp(quality, 0.0, 1.0) * 100.0 + 0.5);
  unsigned char* encoded = nullptr;
  unsigned long size = 0;
  char message[JMSG_LENGTH_MAX] = {};
  const bool ok = encodeRgb(rgb.data(), rgba.width, rgba.height, std::max(level, 1), &encoded, &size, message);
  std::vector<uint8_t> out;
  if (ok && encoded) out.assign(encoded, encoded + size);
  std::free(encoded);
  if (!ok) return fail(error, std::string("JPEG: ") + message);
  return out;
}

std::optional<std::vector<uint8_t>> ImageEncoder::JPEGRepresentation(const Image& image, double quality, Error* error) {
  auto pixels = BitmapPixels::pixelsOf(image, error);
  if (!pixels) return std::nullopt;
  return JPEGRepresentation(*pixels, quality, error);
}

bool ImageEncoder::writePNG(const Bitmap& bitmap, const std::filesystem::path& path, Error* error) {
  auto png = PNGRepresentation(bitmap, error);
  if (!png) return false;
  return AtomicFile::write(path, std::string_view(reinterpret_cast<const char*>(png->data()), png->size()), error);
}

}  // namespace quillet::platform
