#pragma once

#include <openssl/err.h>

#include <string>

#include "platform/value/Error.h"

namespace quillet::platform {

// Errors of the crypto facility: domain "quillet.platform.crypto", code 1,
// the message (with OpenSSL's reason, when it gave one) in
// userInfo["NSLocalizedDescription"]. Clears OpenSSL's error queue.
inline constexpr const char* kCryptoErrorDomain = "quillet.platform.crypto";

inline void setCryptoError(Error* out, const std::string& what) {
  unsigned long code = ERR_get_error();
  ERR_clear_error();
  if (!out) return;
  std::string message = what;
  if (code != 0) {
    char reason[256];
    ERR_error_string_n(code, reason, sizeof reason);
    message += ": " + std::string(reason);
  }
  *out = Error::withDescription(kCryptoErrorDomain, 1, message);
}

}  // namespace quillet::platform
