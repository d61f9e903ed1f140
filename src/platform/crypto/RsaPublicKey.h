#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <openssl/types.h>

#include "platform/value/Error.h"

namespace quillet::platform {

class RsaKeyPair;

// An RSA public key. Immutable; copies share the key; safe to use from
// several threads at once.
class RsaPublicKey {
 public:
  // From PKCS#1 RSAPublicKey DER (the whole input must be the key).
  static std::optional<RsaPublicKey> fromPkcs1Der(std::span<const uint8_t> der, Error* error = nullptr);

  // PKCS#1 RSAPublicKey DER: SEQUENCE { modulus, publicExponent }.
  std::vector<uint8_t> pkcs1Der() const;
  // The modulus size in bytes (256 for RSA-2048).
  size_t blockSize() const;

  // The raw public-key operation (s^e mod n) on one block of exactly
  // blockSize() bytes: undoes RsaKeyPair::rawPrivateOperation.
  std::optional<std::vector<uint8_t>> rawPublicOperation(std::span<const uint8_t> block, Error* error = nullptr) const;

 private:
  friend class RsaKeyPair;
  explicit RsaPublicKey(std::shared_ptr<EVP_PKEY> key) : key_(std::move(key)) {}
  std::shared_ptr<EVP_PKEY> key_;
};

}  // namespace quillet::platform
