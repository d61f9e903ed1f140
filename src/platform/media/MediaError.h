#pragma once

#include <string>

#include "platform/value/Error.h"

namespace quillet::platform {

// Errors of the media facility: domain "MediaErrorDomain", the message in
// userInfo["NSLocalizedDescription"].
inline constexpr const char* kMediaErrorDomain = "MediaErrorDomain";

enum MediaErrorCode : int64_t {
  kMediaErrorCannotOpen = 1,    // the URL cannot be read (missing file, refused connection, not a container)
  kMediaErrorNotPlayable = 2,   // a container without a timed video or audio stream that can be decoded
  kMediaErrorNoVideo = 3,       // a picture was asked of a medium without video
  kMediaErrorDecodeFailed = 4,  // reading, seeking, decoding or converting failed
  kMediaErrorNoFrame = 5,       // the stream holds no picture for the time asked
  kMediaErrorCancelled = 6,     // the owner stopped a blocking read
};

// Stores the error in `out` when it is non-null.
inline void setMediaError(Error* out, MediaErrorCode code, const std::string& message) {
  if (out) {
    *out = Error::withDescription(kMediaErrorDomain, code, message);
  }
}

}  // namespace quillet::platform
