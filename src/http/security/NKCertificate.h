#pragma once

#include <openssl/x509.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quillet::http {

// One X.509 certificate: its DER data and the parsed form. Immutable, so a
// certificate may be shared between threads.
class NKCertificate {
 public:
  using Bytes = std::vector<uint8_t>;

  // The certificate in `der`, or null when the data is not one whole
  // DER-encoded certificate (nothing is logged: callers say what was skipped).
  static std::shared_ptr<const NKCertificate> createWithData(const Bytes& der);
  // Shares `x509` (its reference count is raised); null when it cannot be encoded.
  static std::shared_ptr<const NKCertificate> createWithX509(X509* x509);

  const Bytes& data() const { return data_; }
  // Borrowed; lives as long as this object.
  X509* x509() const { return x509_.get(); }
  // The subject public key in DER (SubjectPublicKeyInfo), or nothing when
  // the key is of a kind that cannot be used.
  std::optional<Bytes> publicKeyData() const;

 private:
  struct X509Free {
    void operator()(X509* certificate) const { X509_free(certificate); }
  };
  NKCertificate(Bytes data, X509* x509) : data_(std::move(data)), x509_(x509) {}

  Bytes data_;
  std::unique_ptr<X509, X509Free> x509_;
};

}  // namespace quillet::http
