#pragma once

#include <cairo.h>

#include <memory>

#include "platform/image/Bitmap.h"

namespace quillet::platform {

// Moves pixels between a Bitmap and a drawing surface of the 2D graphics
// library (32-bit premultiplied ARGB). Stateless; callable from any thread,
// each surface used by one thread at a time.
class CairoBitmap {
 public:
  struct SurfaceRelease {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  };
  using Surface = std::unique_ptr<cairo_surface_t, SurfaceRelease>;

  // A new surface holding the bitmap's picture (any layout); null when the
  // bitmap is empty or the surface cannot be made.
  static Surface surfaceFromBitmap(const Bitmap& bitmap);
  // The surface's pixels as 8-bit RGBA, alpha not premultiplied.
  static Bitmap bitmapFromSurface(cairo_surface_t* surface);
};

}  // namespace quillet::platform
