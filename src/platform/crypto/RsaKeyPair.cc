#include "platform/crypto/RsaKeyPair.h"

#include <openssl/rsa.h>
#include <openssl/x509.h>

#include "platform/crypto/CryptoError.h"
#include "platform/crypto/EvpKey.h"

namespace quillet::platform {

std::optional<RsaKeyPair> RsaKeyPair::generate(int bits, Error* error) {
  auto key = shareKey(EVP_RSA_gen(static_cast<unsigned int>(bits)));
  if (!key) {
    setCryptoError(error, "Cannot generate an RSA key pair");
    return std::nullopt;
  }
  return RsaKeyPair(std::move(key));
}

std::optional<RsaKeyPair> RsaKeyPair::fromPrivateKeyDer(std::span<const uint8_t> der, Error* error) {
  const unsigned char* p = der.data();
  auto key = shareKey(d2i_PrivateKey(EVP_PKEY_RSA, nullptr, &p, static_cast<long>(der.size())));
  if (!key || p != der.data() + der.size()) {
    setCryptoError(error, "Not an RSA private key in PKCS#1 DER");
    return std::nullopt;
  }
  return RsaKeyPair(std::move(key));
}

std::vector<uint8_t> RsaKeyPair::privateKeyDer() const {
  int size = i2d_PrivateKey(key_.get(), nullptr);
  if (size <= 0) return {};
  std::vector<uint8_t> out(static_cast<size_t>(size));
  unsigned char* p = out.data();
  i2d_PrivateKey(key_.get(), &p);
  return out;
}

std::optional<std::vector<uint8_t>> RsaKeyPair::rawPrivateOperation(std::span<const uint8_t> input,
                                                                    Error* error) const {
  size_t block = blockSize();
  if (input.size() > block) {
    setCryptoError(error, "Input to the raw RSA operation exceeds the block size");
    return std::nullopt;
  }
  std::vector<uint8_t> padded(block - input.size(), 0);
  padded.insert(padded.end(), input.begin(), input.end());
  EvpKeyContext ctx(EVP_PKEY_CTX_new_from_pkey(nullptr, key_.get(), nullptr));
  std::vector<uint8_t> out(block);
  size_t size = out.size();
  if (!ctx || EVP_PKEY_sign_init(ctx.get()) <= 0 || EVP_PKEY_CTX_set_rsa_padding(ctx.get(), RSA_NO_PADDING) <= 0 ||
      EVP_PKEY_sign(ctx.get(), out.data(), &size, padded.data(), padded.size()) <= 0) {
    setCryptoError(error, "Raw RSA private-key operation failed");
    return std::nullopt;
  }
  out.resize(size);
  out.insert(out.begin(), block - size, 0);
  return out;
}

}  // namespace quillet::platform
