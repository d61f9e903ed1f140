#include "backend/authority/BackendCertificateAuthority.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <sys/stat.h>

#include <cstdio>
#include <memory>
#include <string>

namespace quillet::backend {
namespace {

struct KeyFree {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct CertFree {
  void operator()(X509* cert) const { X509_free(cert); }
};
using KeyPtr = std::unique_ptr<EVP_PKEY, KeyFree>;
using CertPtr = std::unique_ptr<X509, CertFree>;

bool addExtension(X509* cert, X509* issuer, int nid, const char* value) {
  X509V3_CTX ctx;
  X509V3_set_ctx_nodb(&ctx);
  X509V3_set_ctx(&ctx, issuer, cert, nullptr, nullptr, 0);
  X509_EXTENSION* ext = X509V3_EXT_conf_nid(nullptr, &ctx, nid, value);
  if (!ext) return false;
  X509_add_ext(cert, ext, -1);
  X509_EXTENSION_free(ext);
  return true;
}

// A certificate for `key`, signed by `issuerKey` (self-signed without issuer), valid ten years.
CertPtr makeCertificate(EVP_PKEY* key, const char* commonName, long serial, X509* issuer, EVP_PKEY* issuerKey,
                        bool isCa) {
  CertPtr cert(X509_new());
  if (!cert) return nullptr;
  X509_set_version(cert.get(), 2);
  ASN1_INTEGER_set(X509_get_serialNumber(cert.get()), serial);
  X509_gmtime_adj(X509_getm_notBefore(cert.get()), -3600);
  X509_gmtime_adj(X509_getm_notAfter(cert.get()), 10L * 365 * 24 * 3600);
  X509_set_pubkey(cert.get(), key);
  X509_NAME* name = X509_get_subject_name(cert.get());
  X509_NAME_add_entry_by_txt(name, "O", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("Quillet Backend"), -1, -1,
                             0);
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>(commonName), -1, -1, 0);
  X509* signer = issuer ? issuer : cert.get();
  X509_set_issuer_name(cert.get(), X509_get_subject_name(signer));
  bool ok = true;
  if (isCa) {
    ok = addExtension(cert.get(), signer, NID_basic_constraints, "critical,CA:TRUE") &&
         addExtension(cert.get(), signer, NID_key_usage, "critical,keyCertSign,cRLSign") &&
         addExtension(cert.get(), signer, NID_subject_key_identifier, "hash");
  } else {
    ok = addExtension(cert.get(), signer, NID_basic_constraints, "critical,CA:FALSE") &&
         addExtension(cert.get(), signer, NID_key_usage, "critical,digitalSignature,keyEncipherment") &&
         addExtension(cert.get(), signer, NID_ext_key_usage, "serverAuth") &&
         addExtension(cert.get(), signer, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1") &&
         addExtension(cert.get(), signer, NID_authority_key_identifier, "keyid:always");
  }
  if (!ok || X509_sign(cert.get(), issuerKey, EVP_sha256()) <= 0) return nullptr;
  return cert;
}

bool writePem(const std::filesystem::path& path, X509* cert, EVP_PKEY* key) {
  FILE* file = std::fopen(path.c_str(), "w");
  if (!file) return false;
  if (key) ::chmod(path.c_str(), 0600);
  bool ok = cert ? PEM_write_X509(file, cert) == 1
                 : PEM_write_PrivateKey(file, key, nullptr, nullptr, 0, nullptr, nullptr) == 1;
  return std::fclose(file) == 0 && ok;
}

template <typename T, typename Read>
T readPem(const std::filesystem::path& path, Read read) {
  FILE* file = std::fopen(path.c_str(), "r");
  if (!file) return nullptr;
  T value(read(file, nullptr, nullptr, nullptr));
  std::fclose(file);
  return value;
}

}  // namespace

bool BackendCertificateAuthority::ensure(platform::Error* error) {
  auto fail = [&](const std::string& what) {
    if (error) {
      std::string text = "certificate authority: ";
      text.append(what);
      *error = platform::Error::withDescription("quillet.backend.certificates", 1, std::move(text));
    }
    return false;
  };
  std::error_code ec;
  std::filesystem::create_directories(directory_, ec);
  if (ec) return fail("cannot make " + directory_.string());
  if (std::filesystem::exists(certificateFile()) && std::filesystem::exists(keyFile()) &&
      std::filesystem::exists(caFile())) {
    return true;
  }
  KeyPtr caKey = readPem<KeyPtr>(caKeyFile(), PEM_read_PrivateKey);
  CertPtr caCert = readPem<CertPtr>(caFile(), PEM_read_X509);
  if (!caKey || !caCert) {
    caKey.reset(EVP_EC_gen("P-256"));
    if (!caKey) return fail("key generation");
    caCert = makeCertificate(caKey.get(), "Quillet Backend CA", 1, nullptr, caKey.get(), true);
    if (!caCert || !writePem(caKeyFile(), nullptr, caKey.get()) || !writePem(caFile(), caCert.get(), nullptr)) {
      return fail("cannot write the authority");
    }
  }
  KeyPtr key(EVP_EC_gen("P-256"));
  if (!key) return fail("key generation");
  CertPtr cert = makeCertificate(key.get(), "127.0.0.1", 2, caCert.get(), caKey.get(), false);
  if (!cert || !writePem(keyFile(), nullptr, key.get()) || !writePem(certificateFile(), cert.get(), nullptr)) {
    return fail("cannot write the server certificate");
  }
  return true;
}

}  // namespace quillet::backend
