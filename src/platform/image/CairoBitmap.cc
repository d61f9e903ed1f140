#include "platform/image/CairoBitmap.h"

#include <cstring>

#include "platform/image/BitmapPixels.h"

namespace quillet::platform {

CairoBitmap::Surface CairoBitmap::surfaceFromBitmap(const Bitmap& bitmap) {
  const Bitmap rgba = BitmapPixels::rgba8(bitmap);
  if (rgba.width <= 0 || rgba.height <= 0) return nullptr;
  Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, rgba.width, rgba.height));
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
  cairo_surface_flush(surface.get());
  unsigned char* data = cairo_image_surface_get_data(surface.get());
  const int stride = cairo_image_surface_get_stride(surface.get());
  for (int y = 0; y < rgba.height; ++y) {
    auto* row = reinterpret_cast<uint32_t*>(data + static_cast<size_t>(y) * static_cast<size_t>(stride));
    for (int x = 0; x < rgba.width; ++x) {
      const uint8_t* p =
          &rgba.pixels[(static_cast<size_t>(y) * static_cast<size_t>(rgba.width) + static_cast<size_t>(x)) * 4];
      const uint32_t a = p[3];
      auto premultiply = [a](uint8_t c) { return static_cast<uint32_t>((c * a + 127) / 255); };
      row[x] = (a << 24) | (premultiply(p[0]) << 16) | (premultiply(p[1]) << 8) | premultiply(p[2]);
    }
  }
  cairo_surface_mark_dirty(surface.get());
  return surface;
}

Bitmap CairoBitmap::bitmapFromSurface(cairo_surface_t* surface) {
  Bitmap out;
  if (!surface || cairo_surface_get_type(surface) != CAIRO_SURFACE_TYPE_IMAGE) return out;
  cairo_surface_flush(surface);
  out.width = cairo_image_surface_get_width(surface);
  out.height = cairo_image_surface_get_height(surface);
  const unsigned char* data = cairo_image_surface_get_data(surface);
  const int stride = cairo_image_surface_get_stride(surface);
  out.pixels.resize(static_cast<size_t>(out.width) * static_cast<size_t>(out.height) * 4);
  for (int y = 0; y < out.height; ++y) {
    const auto* row = reinterpret_cast<const uint32_t*>(data + static_cast<size_t>(y) * static_cast<size_t>(stride));
    for (int x = 0; x < out.width; ++x) {
      const uint32_t v = row[x];
      const uint32_t a = v >> 24;
      auto unpremultiply = [a](uint32_t c) { return static_cast<uint8_t>(a == 0 ? 0 : (c * 255 + a / 2) / a); };
      uint8_t* p = &out.pixels[(static_cast<size_t>(y) * static_cast<size_t>(out.width) + static_cast<size_t>(x)) * 4];
      p[0] = unpremultiply((v >> 16) & 0xff);
      p[1] = unpremultiply((v >> 8) & 0xff);
      p[2] = unpremultiply(v & 0xff);
      p[3] = static_cast<uint8_t>(a);
    }
  }
  return out;
}

}  // namespace quillet::platform
