#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <openssl/types.h>

#include "platform/crypto/RsaPublicKey.h"
#include "platform/value/Error.h"

namespace quillet::platform {

// An RSA private key with its public half. Immutable; copies share the key;
// safe to use from several threads at once.
class RsaKeyPair {
 public:
  // A new key; 2048 bits unless told otherwise. Takes a noticeable time:
  // call it off the main thread.
  static std::optional<RsaKeyPair> generate(int bits = 2048, Error* error = nullptr);
  // From PKCS#1 RSAPrivateKey DER, as privateKeyDer() gives it.
  static std::optional<RsaKeyPair> fromPrivateKeyDer(std::span<const uint8_t> der, Error* error = nullptr);

  // PKCS#1 RSAPrivateKey DER, for persistence.
  std::vector<uint8_t> privateKeyDer() const;
  // PKCS#1 RSAPublicKey DER of the public half.
  std::vector<uint8_t> publicKeyDer() const { return publicKey().pkcs1Der(); }
  RsaPublicKey publicKey() const { return RsaPublicKey(key_); }
  size_t blockSize() const { return publicKey().blockSize(); }

  // The raw private-key operation (m^d mod n), no padding and no hashing.
  // `input` may be shorter than blockSize(): it is read as a big-endian
  // number, i.e. zero-filled on the left. Input longer than a block, or a
  // number not below the modulus, gives nullopt and the error. The result
  // always has blockSize() bytes.
  std::optional<std::vector<uint8_t>> rawPrivateOperation(std::span<const uint8_t> input, Error* error = nullptr) const;

 private:
  explicit RsaKeyPair(std::shared_ptr<EVP_PKEY> key) : key_(std::move(key)) {}
  std::shared_ptr<EVP_PKEY> key_;
};

}  // namespace quillet::platform
