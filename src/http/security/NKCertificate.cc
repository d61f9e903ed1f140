#include "http/security/NKCertificate.h"

#include <openssl/evp.h>

namespace quillet::http {

std::shared_ptr<const NKCertificate> NKCertificate::createWithData(const Bytes& der) {
  if (der.empty()) return nullptr;
  const unsigned char* cursor = der.data();
  X509* parsed = d2i_X509(nullptr, &cursor, static_cast<long>(der.size()));
  if (!parsed) return nullptr;
  if (cursor != der.data() + der.size()) {  // trailing bytes: not one certificate
    X509_free(parsed);
    return nullptr;
  }
  return std::shared_ptr<const NKCertificate>(new NKCertificate(der, parsed));
}

std::shared_ptr<const NKCertificate> NKCertificate::createWithX509(X509* x509) {
  const int length = x509 ? i2d_X509(x509, nullptr) : 0;
  if (length <= 0) return nullptr;
  Bytes der(static_cast<size_t>(length));
  unsigned char* cursor = der.data();
  if (i2d_X509(x509, &cursor) != length) return nullptr;
  X509_up_ref(x509);
  return std::shared_ptr<const NKCertificate>(new NKCertificate(std::move(der), x509));
}

std::optional<NKCertificate::Bytes> NKCertificate::publicKeyData() const {
  EVP_PKEY* key = X509_get0_pubkey(x509_.get());
  if (!key) return std::nullopt;
  const int length = i2d_PUBKEY(key, nullptr);
  if (length <= 0) return std::nullopt;
  Bytes out(static_cast<size_t>(length));
  unsigned char* cursor = out.data();
  if (i2d_PUBKEY(key, &cursor) != length) return std::nullopt;
  return out;
}

}  // namespace quillet::http
