#include "support/CertificateMaker.h"

#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <stdexcept>

namespace quillet::testing {
namespace {

void check(bool ok, const char* what) {
  if (!ok) throw std::runtime_error(std::string("test certificates: ") + what);
}

void extend(X509* cert, X509* issuer, int nid, const char* value) {
  X509V3_CTX ctx;
  X509V3_set_ctx_nodb(&ctx);
  X509V3_set_ctx(&ctx, issuer, cert, nullptr, nullptr, 0);
  X509_EXTENSION* ext = X509V3_EXT_conf_nid(nullptr, &ctx, nid, value);
  check(ext != nullptr, "extension");
  X509_add_ext(cert, ext, -1);
  X509_EXTENSION_free(ext);
}

std::string memoryText(BIO* bio) {
  char* data = nullptr;
  const long length = BIO_get_mem_data(bio, &data);
  return std::string(data, static_cast<size_t>(length));
}

using BioPtr = std::unique_ptr<BIO, decltype(&BIO_free)>;

}  // namespace

KeyPtr CertificateMaker::makeKey() {
  KeyPtr key(EVP_EC_gen("P-256"));
  check(key != nullptr, "key generation");
  return key;
}

CertPtr CertificateMaker::makeCertificate(EVP_PKEY* key, const char* commonName, long serial, X509* issuer,
                                          EVP_PKEY* issuerKey, bool isAuthority, std::time_t notBefore,
                                          std::time_t notAfter) {
  CertPtr cert(X509_new());
  check(cert != nullptr, "X509_new");
  X509_set_version(cert.get(), 2);
  ASN1_INTEGER_set(X509_get_serialNumber(cert.get()), serial);
  ASN1_TIME_set(X509_getm_notBefore(cert.get()), notBefore);
  ASN1_TIME_set(X509_getm_notAfter(cert.get()), notAfter);
  X509_set_pubkey(cert.get(), key);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(cert.get()), "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(commonName), -1, -1, 0);
  X509* signer = issuer ? issuer : cert.get();
  X509_set_issuer_name(cert.get(), X509_get_subject_name(signer));
  extend(cert.get(), signer, NID_subject_key_identifier, "hash");
  if (issuer) extend(cert.get(), signer, NID_authority_key_identifier, "keyid:always");
  if (isAuthority) {
    extend(cert.get(), signer, NID_basic_constraints, "critical,CA:TRUE");
    extend(cert.get(), signer, NID_key_usage, "critical,keyCertSign,cRLSign");
  } else {
    extend(cert.get(), signer, NID_basic_constraints, "critical,CA:FALSE");
    extend(cert.get(), signer, NID_key_usage, "critical,digitalSignature");
    extend(cert.get(), signer, NID_ext_key_usage, "serverAuth");
    extend(cert.get(), signer, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
  }
  check(X509_sign(cert.get(), issuerKey ? issuerKey : key, EVP_sha256()) > 0, "signing");
  return cert;
}

std::vector<uint8_t> CertificateMaker::der(X509* cert) {
  unsigned char* out = nullptr;
  const int length = i2d_X509(cert, &out);
  check(length > 0, "DER");
  std::vector<uint8_t> bytes(out, out + length);
  OPENSSL_free(out);
  return bytes;
}

std::string CertificateMaker::certificatePem(X509* cert) {
  BioPtr bio(BIO_new(BIO_s_mem()), BIO_free);
  check(PEM_write_bio_X509(bio.get(), cert) == 1, "certificate PEM");
  return memoryText(bio.get());
}

std::string CertificateMaker::keyPem(EVP_PKEY* key) {
  BioPtr bio(BIO_new(BIO_s_mem()), BIO_free);
  check(PEM_write_bio_PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1, "key PEM");
  return memoryText(bio.get());
}

}  // namespace quillet::testing
