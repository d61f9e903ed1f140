#pragma once

#include <openssl/evp.h>

#include <memory>

namespace quillet::platform {

// Ownership helpers for OpenSSL key objects, shared by the RSA classes.
inline std::shared_ptr<EVP_PKEY> shareKey(EVP_PKEY* key) {
  return key ? std::shared_ptr<EVP_PKEY>(key, EVP_PKEY_free) : nullptr;
}

struct EvpKeyContextDeleter {
  void operator()(EVP_PKEY_CTX* ctx) const { EVP_PKEY_CTX_free(ctx); }
};
using EvpKeyContext = std::unique_ptr<EVP_PKEY_CTX, EvpKeyContextDeleter>;

}  // namespace quillet::platform
