#pragma once

#include <cstdint>
#include <string>

namespace quillet::backend {

// Makes the small pictures the news server hands out: real PNG (zlib) and
// baseline JPEG (libjpeg) files, drawn from a seed number so that the same
// URL always gives the same bytes. Stateless and thread-safe.
class NewsImageMaker {
 public:
  // A width x height RGB picture: diagonal bands in a colour taken from `seed`.
  // Empty on failure (a line is logged).
  static std::string png(uint32_t seed, int width, int height);
  static std::string jpeg(uint32_t seed, int width, int height, int quality = 80);
};

}  // namespace quillet::backend
