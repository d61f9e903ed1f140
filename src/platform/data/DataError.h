#pragma once

#include <string>

#include "platform/value/Error.h"

namespace quillet::platform {

// Errors of the data facility. Gzip errors carry zlib's code (or -100 for
// "output too large", -101 for "trailing data"); SQLite errors carry SQLite's
// extended result code. The message is userInfo["NSLocalizedDescription"].
inline constexpr const char* kGzipErrorDomain = "quillet.platform.gzip";
inline constexpr const char* kSqliteErrorDomain = "quillet.platform.sqlite";

// Stores the error in `out` when it is non-null.
inline void setDataError(Error* out, const char* domain, int64_t code, const std::string& message) {
  if (out) *out = Error::withDescription(domain, code, message);
}

}  // namespace quillet::platform
