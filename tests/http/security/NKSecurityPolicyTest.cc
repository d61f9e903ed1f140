#include <gtest/gtest.h>

#include <fstream>

#include "TestChains.h"
#include "http/security/NKSecurityPolicy.h"
#include "platform/files/FileSystem.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::http {
namespace {

using Bytes = TestChains::Bytes;
const TestChains& certs = TestChains::shared();
const Bytes garbage = {0x30, 0x03, 0x01, 0x02};

std::shared_ptr<NKSecurityPolicy> policy(NKSSLPinningMode mode, std::vector<Bytes> pins, bool validatesChain = true) {
  auto made = NKSecurityPolicy::defaultPolicy();
  made->clock = std::make_shared<platform::ManualClock>();
  made->SSLPinningMode = mode;
  made->validatesCertificateChain = validatesChain;
  // The test authorities are not in the system's store: the first evaluation
  // fails, and only pinning can accept the server.
  made->allowInvalidCertificates = true;
  made->setPinnedCertificates(std::move(pins));
  return made;
}

// The server's chain as a handshake shows it: leaf and intermediate.
bool accepts(const NKSecurityPolicy& policy, std::vector<Bytes> chain = {certs.leaf, certs.intermediate},
             std::optional<std::string> domain = "127.0.0.1") {
  NKServerTrust trust(chain, policy.clock);
  return policy.evaluateServerTrust(trust, domain);
}

TEST(NKSecurityPolicyTest, DefaultsAndPlatformEvaluation) {
  auto byDefault = NKSecurityPolicy::defaultPolicy();
  EXPECT_EQ(byDefault->SSLPinningMode, NKSSLPinningModeNone);
  EXPECT_TRUE(byDefault->validatesCertificateChain && byDefault->validatesDomainName);
  EXPECT_FALSE(byDefault->allowInvalidCertificates);
  EXPECT_TRUE(byDefault->pinnedCertificates().empty());
  EXPECT_TRUE(byDefault->usesPlatformEvaluation());

  NKSecurityPolicy differs;
  differs.validatesDomainName = false;
  EXPECT_FALSE(differs.usesPlatformEvaluation());
  EXPECT_FALSE(policy(NKSSLPinningModeNone, {})->usesPlatformEvaluation());  // allows invalid
  NKSecurityPolicy pinned;
  pinned.SSLPinningMode = NKSSLPinningModeCertificate;
  EXPECT_FALSE(pinned.usesPlatformEvaluation());
}

TEST(NKSecurityPolicyTest, PinsAreDeduplicatedAndKeyed) {
  testing::LogCapture log;
  auto pinned = policy(NKSSLPinningModePublicKey, {certs.leaf, certs.root, certs.leaf, garbage, certs.root, garbage});
  EXPECT_EQ(pinned->pinnedCertificates(), (std::vector<Bytes>{certs.leaf, certs.root, garbage}));
  ASSERT_EQ(pinned->pinnedPublicKeys().size(), 2u);
  EXPECT_EQ(pinned->pinnedPublicKeys()[0], NKSecurityPolicy::publicKeyForCertificate(certs.leaf));
  EXPECT_EQ(log.messages().size(), 1u);  // the unparseable pin, once
  EXPECT_TRUE(log.contains("does not parse"));

  // Twice the leaf's pin still matches one of the two chain keys: refused
  // under the all-keys rule.
  EXPECT_FALSE(accepts(*policy(NKSSLPinningModePublicKey, {certs.leaf, certs.leaf})));
  EXPECT_FALSE(accepts(*policy(NKSSLPinningModeCertificate, {certs.leaf, certs.leaf})));
}

TEST(NKSecurityPolicyTest, ModeNoneJudgesTheChainAgainstTheSystem) {
  NKSecurityPolicy strict;
  strict.clock = std::make_shared<platform::ManualClock>();
  EXPECT_FALSE(accepts(strict, {certs.selfSigned}));
  EXPECT_FALSE(accepts(strict));  // a private authority
  strict.validatesDomainName = false;
  EXPECT_FALSE(accepts(strict, {certs.selfSigned}));
  strict.allowInvalidCertificates = true;
  EXPECT_TRUE(accepts(strict, {certs.selfSigned}));
  EXPECT_TRUE(accepts(strict, {}));
}

TEST(NKSecurityPolicyTest, DomainNameIsCheckedOnlyWhenAsked) {
  auto pinned = policy(NKSSLPinningModeCertificate, {certs.root}, false);
  EXPECT_TRUE(accepts(*pinned, {certs.leaf, certs.intermediate}, "localhost"));
  EXPECT_TRUE(accepts(*pinned, {certs.leaf, certs.intermediate}, std::nullopt));
  EXPECT_FALSE(accepts(*pinned, {certs.leaf, certs.intermediate}, "elsewhere.test"));
  pinned->validatesDomainName = false;
  EXPECT_TRUE(accepts(*pinned, {certs.leaf, certs.intermediate}, "elsewhere.test"));
}

TEST(NKSecurityPolicyTest, CertificatePinning) {
  // The root as the only anchor.
  EXPECT_TRUE(accepts(*policy(NKSSLPinningModeCertificate, {certs.root}, false)));
  EXPECT_FALSE(accepts(*policy(NKSSLPinningModeCertificate, {certs.otherRoot}, false)));
  EXPECT_FALSE(accepts(*policy(NKSSLPinningModeCertificate, {certs.root}, false), {certs.otherLeaf}));
  // Validating the chain: every certificate of the server's chain is pinned.
  EXPECT_FALSE(accepts(*policy(NKSSLPinningModeCertificate, {certs.root})));
  EXPECT_TRUE(accepts(*policy(NKSSLPinningModeCertificate, {certs.leaf, certs.intermediate})));
  // The leaf alone: an anchor itself, but the intermediate is not pinned.
  EXPECT_FALSE(accepts(*policy(NKSSLPinningModeCertificate, {certs.leaf})));
  EXPECT_TRUE(accepts(*policy(NKSSLPinningModeCertificate, {certs.leaf}, false)));
  EXPECT_TRUE(accepts(*policy(NKSSLPinningModeCertificate, {certs.leaf}), {certs.leaf}));
  // A self-signed server pinned as it is.
  EXPECT_TRUE(accepts(*policy(NKSSLPinningModeCertificate, {certs.selfSigned}), {certs.selfSigned}));

  // Invalid against the system and invalid certificates not allowed.
  auto strict = policy(NKSSLPinningModeCertificate, {certs.leaf, certs.intermediate});
  strict->allowInvalidCertificates = false;
  EXPECT_FALSE(accepts(*strict));
}

TEST(NKSecurityPolicyTest, PublicKeyPinning) {
  testing::LogCapture log;
  // The intermediate's key: never enough for all keys, and not the leaf's.
  EXPECT_FALSE(accepts(*policy(NKSSLPinningModePublicKey, {certs.intermediate})));
  EXPECT_FALSE(accepts(*policy(NKSSLPinningModePublicKey, {certs.intermediate}, false)));
  // The leaf's key: at least one (the leaf's) matches; not all.
  EXPECT_TRUE(accepts(*policy(NKSSLPinningModePublicKey, {certs.leaf}, false)));
  EXPECT_FALSE(accepts(*policy(NKSSLPinningModePublicKey, {certs.leaf})));
  EXPECT_TRUE(accepts(*policy(NKSSLPinningModePublicKey, {certs.leaf, certs.intermediate})));
  EXPECT_TRUE(accepts(*policy(NKSSLPinningModePublicKey, {certs.intermediate, certs.leaf, garbage})));
  EXPECT_FALSE(accepts(*policy(NKSSLPinningModePublicKey, {certs.otherLeaf}, false)));

  auto strict = policy(NKSSLPinningModePublicKey, {certs.leaf}, false);
  strict->allowInvalidCertificates = false;
  EXPECT_FALSE(accepts(*strict));
}

TEST(NKSecurityPolicyTest, BadInputIsRefused) {
  testing::LogCapture log;
  for (auto mode : {NKSSLPinningModePublicKey, NKSSLPinningModeCertificate}) {
    for (bool validatesChain : {true, false}) {
      EXPECT_FALSE(accepts(*policy(mode, {}, validatesChain)));
      EXPECT_FALSE(accepts(*policy(mode, {garbage}, validatesChain)));
      EXPECT_FALSE(accepts(*policy(mode, {certs.leaf, certs.intermediate}, validatesChain), {}));
      EXPECT_FALSE(accepts(*policy(mode, {certs.leaf, certs.intermediate}, validatesChain), {garbage}));
    }
  }
  EXPECT_FALSE(accepts(*policy(static_cast<NKSSLPinningMode>(7), {certs.leaf, certs.intermediate}, false)));
}

TEST(NKSecurityPolicyTest, PinnedCertificatesComeFromTheResourceDirectory) {
  testing::TempDir dir;
  auto write = [&](const std::string& name, const Bytes& data) {
    std::ofstream(dir.path() / name, std::ios::binary).write(reinterpret_cast<const char*>(data.data()), data.size());
  };
  write("b.cer", certs.root);
  write("a.cer", certs.leaf);
  write("c.pem", certs.intermediate);
  write("d.cer.bak", certs.intermediate);
  write("e.CER", certs.intermediate);
  std::filesystem::create_directory(dir.path() / "f.cer");
  const std::vector<Bytes> expected = {certs.leaf, certs.root};
  EXPECT_EQ(NKSecurityPolicy::certificatesInDirectory(dir.path()), expected);
  EXPECT_TRUE(NKSecurityPolicy::certificatesInDirectory(dir.path() / "missing").empty());

  platform::FileSystem::Options options;
  options.resourceDirectory = dir.path();
  platform::FileSystem::setStandard(std::make_shared<platform::FileSystem>(dir.path() / "root", options));
  EXPECT_EQ(NKSecurityPolicy::defaultPinnedCertificates(), expected);
  write("g.cer", certs.otherRoot);  // read once: later files are not seen
  auto pinned = NKSecurityPolicy::policyWithPinningMode(NKSSLPinningModeCertificate);
  EXPECT_EQ(pinned->SSLPinningMode, NKSSLPinningModeCertificate);
  EXPECT_EQ(pinned->pinnedCertificates(), expected);
  EXPECT_EQ(pinned->pinnedPublicKeys().size(), 2u);
}

}  // namespace
}  // namespace quillet::http
