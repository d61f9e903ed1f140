#include <gtest/gtest.h>

#include "TestChains.h"
#include "http/security/NKServerTrust.h"
#include "support/LogCapture.h"

namespace quillet::http {
namespace {

const TestChains& certs = TestChains::shared();

NKServerTrust anchoredTrust(NKTrustPolicy policy, std::shared_ptr<platform::Clock> clock = nullptr) {
  NKServerTrust trust({certs.leaf, certs.intermediate}, clock ? clock : std::make_shared<platform::ManualClock>());
  trust.setAnchorCertificates({certs.root});
  trust.setPolicy(std::move(policy));
  return trust;
}

TEST(NKServerTrustTest, AnchorsPolicyHostAndDates) {
  // Anchored at the root: the evaluation builds the whole chain.
  NKServerTrust trust = anchoredTrust(NKTrustPolicy::SSL("127.0.0.1"));
  EXPECT_EQ(trust.evaluate(), NKTrustResultUnspecified);
  ASSERT_EQ(trust.certificateCount(), 3u);
  EXPECT_EQ(trust.certificateDataAtIndex(2), certs.root);

  EXPECT_EQ(anchoredTrust(NKTrustPolicy::SSL("10.0.0.1")).evaluate(), NKTrustResultRecoverableTrustFailure);

  // After 2040 every certificate has expired.
  auto late = std::make_shared<platform::ManualClock>(2'300'000'000.0);
  EXPECT_FALSE(NKServerTrust::isValidResult(anchoredTrust(NKTrustPolicy::basicX509(), late).evaluate()));

  // The server purpose: the root's own certificate cannot serve TLS.
  NKServerTrust rootOnly({certs.root});
  rootOnly.setAnchorCertificates({certs.root});
  EXPECT_TRUE(NKServerTrust::isValidResult(rootOnly.evaluate()));
  rootOnly.setPolicy(NKTrustPolicy::SSL(std::nullopt));
  EXPECT_FALSE(NKServerTrust::isValidResult(rootOnly.evaluate()));
}

TEST(NKServerTrustTest, BadCertificatesAreLeftOut) {
  testing::LogCapture log;
  const TestChains::Bytes garbage = {0x30, 0x03, 0x01, 0x02};

  NKServerTrust noLeaf({garbage, certs.intermediate});
  EXPECT_EQ(noLeaf.evaluate(), NKTrustResultInvalid);
  EXPECT_EQ(noLeaf.certificateCount(), 0u);
  EXPECT_FALSE(noLeaf.copyPublicKey());
  EXPECT_TRUE(log.contains("server certificate 0 (4 bytes) does not parse"));

  EXPECT_EQ(NKServerTrust({}).evaluate(), NKTrustResultInvalid);

  // A certificate with bytes after it is not one certificate.
  TestChains::Bytes trailing = certs.leaf;
  trailing.push_back(0);
  EXPECT_EQ(NKServerTrust({trailing}).evaluate(), NKTrustResultInvalid);

  // A bad middle certificate and a bad anchor are dropped; the rest is judged.
  NKServerTrust trust({certs.leaf, garbage, certs.intermediate});
  trust.setAnchorCertificates({garbage, certs.root});
  EXPECT_TRUE(NKServerTrust::isValidResult(trust.evaluate()));
  EXPECT_TRUE(log.contains("anchor certificate 0 (4 bytes) does not parse"));
}

}  // namespace
}  // namespace quillet::http
