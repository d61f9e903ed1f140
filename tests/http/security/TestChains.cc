#include "TestChains.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>

namespace quillet::http {
namespace {

using KeyPtr = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using CertPtr = std::unique_ptr<X509, decltype(&X509_free)>;

void check(bool ok, const char* what) {
  if (!ok) throw std::runtime_error(std::string("test chains: ") + what);
}

KeyPtr makeKey() {
  KeyPtr key(EVP_EC_gen("P-256"), EVP_PKEY_free);
  check(key != nullptr, "key");
  return key;
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

// Signed by (issuer, issuerKey), or by itself when issuer is null.
CertPtr makeCert(EVP_PKEY* key, const char* name, long serial, X509* issuer, EVP_PKEY* issuerKey, bool isCa) {
  CertPtr cert(X509_new(), X509_free);
  X509_set_version(cert.get(), 2);
  ASN1_INTEGER_set(X509_get_serialNumber(cert.get()), serial);
  ASN1_TIME_set(X509_getm_notBefore(cert.get()), 1577836800);  // 2020-01-01
  ASN1_TIME_set(X509_getm_notAfter(cert.get()), 2208988800);   // 2040-01-01
  X509_set_pubkey(cert.get(), key);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(cert.get()), "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(name), -1, -1, 0);
  X509* signer = issuer ? issuer : cert.get();
  X509_set_issuer_name(cert.get(), X509_get_subject_name(signer));
  extend(cert.get(), signer, NID_subject_key_identifier, "hash");
  if (issuer) extend(cert.get(), signer, NID_authority_key_identifier, "keyid:always");
  if (isCa) {
    extend(cert.get(), signer, NID_basic_constraints, "critical,CA:TRUE");
    extend(cert.get(), signer, NID_key_usage, "critical,keyCertSign,cRLSign");
  } else {
    extend(cert.get(), signer, NID_basic_constraints, "critical,CA:FALSE");
    extend(cert.get(), signer, NID_key_usage, "critical,digitalSignature");
    extend(cert.get(), signer, NID_ext_key_usage, "serverAuth");
    extend(cert.get(), signer, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
  }
  check(X509_sign(cert.get(), issuerKey ? issuerKey : key, EVP_sha256()) > 0, "sign");
  return cert;
}

TestChains::Bytes der(X509* cert) {
  unsigned char* out = nullptr;
  const int length = i2d_X509(cert, &out);
  check(length > 0, "DER");
  TestChains::Bytes bytes(out, out + length);
  OPENSSL_free(out);
  return bytes;
}

std::string pem(X509* cert, EVP_PKEY* key) {
  std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new(BIO_s_mem()), BIO_free);
  check(cert ? PEM_write_bio_X509(bio.get(), cert) == 1
             : PEM_write_bio_PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1,
        "PEM");
  char* data = nullptr;
  const long length = BIO_get_mem_data(bio.get(), &data);
  return std::string(data, static_cast<size_t>(length));
}

TestChains make() {
  KeyPtr rootKey = makeKey(), intermediateKey = makeKey(), leafKey = makeKey();
  KeyPtr otherRootKey = makeKey(), otherLeafKey = makeKey(), selfKey = makeKey();
  CertPtr root = makeCert(rootKey.get(), "Policy Test Root", 1, nullptr, nullptr, true);
  CertPtr intermediate = makeCert(intermediateKey.get(), "Policy Test Intermediate", 2, root.get(), rootKey.get(), true);
  CertPtr leaf = makeCert(leafKey.get(), "localhost", 3, intermediate.get(), intermediateKey.get(), false);
  CertPtr otherRoot = makeCert(otherRootKey.get(), "Other Test Root", 4, nullptr, nullptr, true);
  CertPtr otherLeaf = makeCert(otherLeafKey.get(), "localhost", 5, otherRoot.get(), otherRootKey.get(), false);
  CertPtr selfSigned = makeCert(selfKey.get(), "localhost", 6, nullptr, nullptr, false);
  TestChains chains;
  chains.root = der(root.get());
  chains.intermediate = der(intermediate.get());
  chains.leaf = der(leaf.get());
  chains.otherRoot = der(otherRoot.get());
  chains.otherLeaf = der(otherLeaf.get());
  chains.selfSigned = der(selfSigned.get());
  chains.leafChainPem = pem(leaf.get(), nullptr);
  chains.leafChainPem.append(pem(intermediate.get(), nullptr));
  chains.leafKeyPem = pem(nullptr, leafKey.get());
  return chains;
}

}  // namespace

const TestChains& TestChains::shared() {
  static const TestChains* chains = new TestChains(make());
  return *chains;
}

}  // namespace quillet::http
