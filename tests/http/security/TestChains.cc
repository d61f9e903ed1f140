#include "TestChains.h"

#include "support/CertificateMaker.h"

namespace quillet::http {
namespace {

using testing::CertificateMaker;
using testing::CertPtr;
using testing::KeyPtr;

TestChains make() {
  constexpr std::time_t kFrom = 1577836800;   // 2020-01-01
  constexpr std::time_t kUntil = 2208988800;  // 2040-01-01
  auto cert = [&](EVP_PKEY* key, const char* name, long serial, X509* issuer, EVP_PKEY* issuerKey, bool isCa) {
    return CertificateMaker::makeCertificate(key, name, serial, issuer, issuerKey, isCa, kFrom, kUntil);
  };
  KeyPtr rootKey = CertificateMaker::makeKey(), intermediateKey = CertificateMaker::makeKey();
  KeyPtr leafKey = CertificateMaker::makeKey(), otherRootKey = CertificateMaker::makeKey();
  KeyPtr otherLeafKey = CertificateMaker::makeKey(), selfKey = CertificateMaker::makeKey();
  CertPtr root = cert(rootKey.get(), "Policy Test Root", 1, nullptr, nullptr, true);
  CertPtr intermediate = cert(intermediateKey.get(), "Policy Test Intermediate", 2, root.get(), rootKey.get(), true);
  CertPtr leaf = cert(leafKey.get(), "localhost", 3, intermediate.get(), intermediateKey.get(), false);
  CertPtr otherRoot = cert(otherRootKey.get(), "Other Test Root", 4, nullptr, nullptr, true);
  CertPtr otherLeaf = cert(otherLeafKey.get(), "localhost", 5, otherRoot.get(), otherRootKey.get(), false);
  CertPtr selfSigned = cert(selfKey.get(), "localhost", 6, nullptr, nullptr, false);
  TestChains chains;
  chains.root = CertificateMaker::der(root.get());
  chains.intermediate = CertificateMaker::der(intermediate.get());
  chains.leaf = CertificateMaker::der(leaf.get());
  chains.otherRoot = CertificateMaker::der(otherRoot.get());
  chains.otherLeaf = CertificateMaker::der(otherLeaf.get());
  chains.selfSigned = CertificateMaker::der(selfSigned.get());
  chains.leafChainPem =
      CertificateMaker::certificatePem(leaf.get()) + CertificateMaker::certificatePem(intermediate.get());
  chains.leafKeyPem = CertificateMaker::keyPem(leafKey.get());
  return chains;
}

}  // namespace

const TestChains& TestChains::shared() {
  static const TestChains* chains = new TestChains(make());
  return *chains;
}

}  // namespace quillet::http
