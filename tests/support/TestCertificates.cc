#include "support/TestCertificates.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <fstream>
#include <memory>
#include <mutex>
#include <stdexcept>

namespace quillet::testing {
namespace {

struct KeyFree {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct CertFree {
  void operator()(X509* cert) const { X509_free(cert); }
};
struct BioFree {
  void operator()(BIO* bio) const { BIO_free(bio); }
};
using KeyPtr = std::unique_ptr<EVP_PKEY, KeyFree>;
using CertPtr = std::unique_ptr<X509, CertFree>;
using BioPtr = std::unique_ptr<BIO, BioFree>;

void check(bool ok, const char* what) {
  if (!ok) throw std::runtime_error(std::string("test certificates: ") + what);
}

KeyPtr makeKey() {
  KeyPtr key(EVP_EC_gen("P-256"));
  check(key != nullptr, "key generation");
  return key;
}

void addExtension(X509* cert, X509* issuer, int nid, const char* value) {
  X509V3_CTX ctx;
  X509V3_set_ctx_nodb(&ctx);
  X509V3_set_ctx(&ctx, issuer, cert, nullptr, nullptr, 0);
  X509_EXTENSION* ext = X509V3_EXT_conf_nid(nullptr, &ctx, nid, value);
  check(ext != nullptr, "extension");
  X509_add_ext(cert, ext, -1);
  X509_EXTENSION_free(ext);
}

// A certificate for `subjectKey` named `commonName`, signed by `issuerKey`
// (self-signed when issuer is null).
CertPtr makeCertificate(EVP_PKEY* subjectKey, const char* commonName, long serial, X509* issuer,
                        EVP_PKEY* issuerKey, bool isCa) {
  CertPtr cert(X509_new());
  check(cert != nullptr, "X509_new");
  X509_set_version(cert.get(), 2);
  ASN1_INTEGER_set(X509_get_serialNumber(cert.get()), serial);
  X509_gmtime_adj(X509_getm_notBefore(cert.get()), -3600);
  X509_gmtime_adj(X509_getm_notAfter(cert.get()), 24 * 3600);
  X509_set_pubkey(cert.get(), subjectKey);
  X509_NAME* name = X509_get_subject_name(cert.get());
  X509_NAME_add_entry_by_txt(name, "O", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("Quillet Tests"), -1,
                             -1, 0);
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>(commonName), -1, -1,
                             0);
  X509* signer = issuer != nullptr ? issuer : cert.get();
  X509_set_issuer_name(cert.get(), X509_get_subject_name(signer));
  if (isCa) {
    addExtension(cert.get(), signer, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(cert.get(), signer, NID_key_usage, "critical,keyCertSign,cRLSign");
    addExtension(cert.get(), signer, NID_subject_key_identifier, "hash");
  } else {
    addExtension(cert.get(), signer, NID_basic_constraints, "critical,CA:FALSE");
    addExtension(cert.get(), signer, NID_key_usage, "critical,digitalSignature,keyEncipherment");
    addExtension(cert.get(), signer, NID_ext_key_usage, "serverAuth");
    addExtension(cert.get(), signer, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
    addExtension(cert.get(), signer, NID_authority_key_identifier, "keyid:always");
  }
  check(X509_sign(cert.get(), issuerKey, EVP_sha256()) > 0, "X509_sign");
  return cert;
}

std::string bioText(BIO* bio) {
  char* data = nullptr;
  long length = BIO_get_mem_data(bio, &data);
  return std::string(data, static_cast<size_t>(length));
}

std::string certPem(X509* cert) {
  BioPtr bio(BIO_new(BIO_s_mem()));
  check(PEM_write_bio_X509(bio.get(), cert) == 1, "PEM_write_bio_X509");
  return bioText(bio.get());
}

std::string keyPem(EVP_PKEY* key) {
  BioPtr bio(BIO_new(BIO_s_mem()));
  check(PEM_write_bio_PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1,
        "PEM_write_bio_PrivateKey");
  return bioText(bio.get());
}

TestCertificates generate() {
  KeyPtr caKey = makeKey();
  CertPtr ca = makeCertificate(caKey.get(), "Quillet Test CA", 1, nullptr, caKey.get(), true);
  KeyPtr serverKey = makeKey();
  CertPtr server = makeCertificate(serverKey.get(), "localhost", 2, ca.get(), caKey.get(), false);
  TestCertificates result;
  result.caPem = certPem(ca.get());
  result.serverCertPem = certPem(server.get());
  result.serverKeyPem = keyPem(serverKey.get());
  return result;
}

void writeFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
  check(static_cast<bool>(out), "writing a PEM file");
}

}  // namespace

TestCertificates makeTestCertificates(const std::filesystem::path& dir) {
  static std::mutex mutex;
  static std::unique_ptr<TestCertificates> cached;
  TestCertificates result;
  {
    std::lock_guard lock(mutex);
    if (!cached) cached = std::make_unique<TestCertificates>(generate());
    result = *cached;
  }
  std::filesystem::create_directories(dir);
  result.caFile = dir / "ca.pem";
  result.certFile = dir / "server.pem";
  result.keyFile = dir / "server-key.pem";
  writeFile(result.caFile, result.caPem);
  writeFile(result.certFile, result.serverCertPem);
  writeFile(result.keyFile, result.serverKeyPem);
  return result;
}

}  // namespace quillet::testing
