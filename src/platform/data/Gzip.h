#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "platform/value/Error.h"

namespace quillet::platform {

// gzip and inflate of byte buffers (the standard gzip format: RFC 1952
// header and trailer). Stateless; thread-safe.
class Gzip {
 public:
  static constexpr size_t kDefaultMaxOutput = 64u * 1024u * 1024u;

  // Gzip of `data` (empty data gives a valid gzip of nothing). `level` is
  // zlib's: -1 default, 0 to 9.
  static std::optional<std::vector<uint8_t>> compress(std::span<const uint8_t> data, int level = -1,
                                                      Error* error = nullptr);
  static std::optional<std::vector<uint8_t>> compress(std::string_view data, int level = -1, Error* error = nullptr);

  // Inflates a gzip or zlib stream (detected from its header). Empty,
  // corrupt, truncated input, bytes after the end of the stream, or output
  // above `maxOutput` give nullopt and the error.
  static std::optional<std::vector<uint8_t>> inflate(std::span<const uint8_t> data,
                                                     size_t maxOutput = kDefaultMaxOutput, Error* error = nullptr);

  // True when the data begins with the gzip magic bytes 1f 8b.
  static bool isGzip(std::span<const uint8_t> data);
};

}  // namespace quillet::platform
