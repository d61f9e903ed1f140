#pragma once

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <cstdint>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

namespace quillet::testing {

struct KeyFree {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct CertFree {
  void operator()(X509* cert) const { X509_free(cert); }
};
using KeyPtr = std::unique_ptr<EVP_PKEY, KeyFree>;
using CertPtr = std::unique_ptr<X509, CertFree>;

// Keys and certificates for tests, made with OpenSSL. Every failure throws
// std::runtime_error (test code only).
struct CertificateMaker {
  // An EC P-256 key.
  static KeyPtr makeKey();
  // A certificate for `key` named `commonName`, valid between the two times
  // (seconds since 1970), signed by (issuer, issuerKey), or by itself when
  // issuer is null. An authority may sign certificates; a leaf is a TLS
  // server for "localhost" and 127.0.0.1.
  static CertPtr makeCertificate(EVP_PKEY* key, const char* commonName, long serial, X509* issuer, EVP_PKEY* issuerKey,
                                 bool isAuthority, std::time_t notBefore, std::time_t notAfter);
  static std::vector<uint8_t> der(X509* cert);
  static std::string certificatePem(X509* cert);
  static std::string keyPem(EVP_PKEY* key);
};

}  // namespace quillet::testing
