#include "platform/crypto/RsaPublicKey.h"

#include <openssl/rsa.h>
#include <openssl/x509.h>

#include "platform/crypto/CryptoError.h"
#include "platform/crypto/EvpKey.h"

namespace quillet::platform {

std::optional<RsaPublicKey> RsaPublicKey::fromPkcs1Der(std::span<const uint8_t> der, Error* error) {
  const unsigned char* p = der.data();
  auto key = shareKey(d2i_PublicKey(EVP_PKEY_RSA, nullptr, &p, static_cast<long>(der.size())));
  if (!key || p != der.data() + der.size()) {
    setCryptoError(error, "Not an RSA public key in PKCS#1 DER");
    return std::nullopt;
  }
  return RsaPublicKey(std::move(key));
}

std::vector<uint8_t> RsaPublicKey::pkcs1Der() const {
  int size = i2d_PublicKey(key_.get(), nullptr);
  if (size <= 0) return {};
  std::vector<uint8_t> out(static_cast<size_t>(size));
  unsigned char* p = out.data();
  i2d_PublicKey(key_.get(), &p);
  return out;
}

size_t RsaPublicKey::blockSize() const { return static_cast<size_t>(EVP_PKEY_get_size(key_.get())); }

std::optional<std::vector<uint8_t>> RsaPublicKey::rawPublicOperation(std::span<const uint8_t> block,
                                                                     Error* error) const {
  if (block.size() != blockSize()) {
    setCryptoError(error, "A raw RSA block must have the key's block size");
    return std::nullopt;
  }
  EvpKeyContext ctx(EVP_PKEY_CTX_new_from_pkey(nullptr, key_.get(), nullptr));
  std::vector<uint8_t> out(blockSize());
  size_t size = out.size();
  if (!ctx || EVP_PKEY_verify_recover_init(ctx.get()) <= 0 ||
      EVP_PKEY_CTX_set_rsa_padding(ctx.get(), RSA_NO_PADDING) <= 0 ||
      EVP_PKEY_verify_recover(ctx.get(), out.data(), &size, block.data(), block.size()) <= 0) {
    setCryptoError(error, "Raw RSA public-key operation failed");
    return std::nullopt;
  }
  // The recovered number, zero-filled on the left to a whole block.
  out.resize(size);
  out.insert(out.begin(), blockSize() - size, 0);
  return out;
}

}  // namespace quillet::platform
