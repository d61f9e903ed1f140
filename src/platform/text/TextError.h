#pragma once

#include <string>

#include "platform/value/Error.h"

namespace quillet::platform {

// Errors of the text facility: domain "quillet.platform.text", the message in
// userInfo["NSLocalizedDescription"].
inline constexpr const char* kTextErrorDomain = "quillet.platform.text";

enum TextErrorCode : int64_t {
  kTextErrorBadDateFormat = 1,
  kTextErrorBadPattern = 2,
  kTextErrorBadTransform = 3,
  kTextErrorBadUrl = 4,
};

// Stores the error in `out` when it is non-null.
inline void setTextError(Error* out, TextErrorCode code, const std::string& message) {
  if (out) {
    *out = Error::withDescription(kTextErrorDomain, code, message);
  }
}

}  // namespace quillet::platform
