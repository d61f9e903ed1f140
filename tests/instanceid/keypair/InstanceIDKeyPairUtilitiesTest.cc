// Signing in raw blocks, the two Base64 forms, the digest and the joined text.
#include <gtest/gtest.h>

#include "KeyPairTestEnvironment.h"
#include "instanceid/keypair/InstanceIDKeyPairUtilities.h"
#include "instanceid/keypair/InstanceIDStringEncoding.h"
#include "platform/crypto/Digest.h"
#include "support/LogCapture.h"

namespace quillet::instanceid {
namespace {

using Bytes = platform::Value::Bytes;

TEST(InstanceIDKeyPairUtilitiesTest, LongTextIsSignedSliceBySliceWithoutPaddingOrHashing) {
  const platform::RsaKeyPair& key = testing::sharedTestKey();
  std::string text;
  for (int i = 0; text.size() < 300; ++i) text += "line " + std::to_string(i) + "\n";
  const Bytes data(text.begin(), text.end());

  const std::optional<Bytes> signature = InstanceIDSignData(key, data);
  ASSERT_TRUE(signature);
  ASSERT_EQ(signature->size(), 2 * 256u);
  for (size_t block = 0; block < 2; ++block) {
    const auto undone = key.publicKey().rawPublicOperation(std::span(*signature).subspan(block * 256, 256));
    ASSERT_TRUE(undone);
    const size_t sliceLength = std::min<size_t>(256, data.size() - block * 256);
    Bytes expected(256 - sliceLength, 0);
    expected.insert(expected.end(), data.begin() + block * 256, data.begin() + block * 256 + sliceLength);
    EXPECT_EQ(*undone, expected) << block;
  }

  const std::optional<std::string> params = InstanceIDSignParams(key, text);
  ASSERT_TRUE(params);
  EXPECT_EQ(params->find('='), std::string::npos);
  EXPECT_EQ(InstanceIDStringEncoding::rfc4648Base64WebsafeStringEncoding().decode(*params), signature);
}

TEST(InstanceIDKeyPairUtilitiesTest, EmptyTextGivesNoSignature) {
  quillet::testing::LogCapture log;
  EXPECT_EQ(InstanceIDSignData(testing::sharedTestKey(), {}), Bytes());
  EXPECT_FALSE(InstanceIDSignParams(testing::sharedTestKey(), ""));
  EXPECT_TRUE(log.contains("Failed to encrypt params "));
}

TEST(InstanceIDKeyPairUtilitiesTest, EncodingsDigestAndJoining) {
  const Bytes bytes(100, 0xfb);
  const std::string plain = InstanceIDPlainBase64WithLineBreaks(bytes);
  ASSERT_EQ(plain.size(), 136u + 4u);
  EXPECT_EQ(plain.substr(64, 2), "\r\n");
  EXPECT_EQ(plain.substr(130, 2), "\r\n");
  EXPECT_TRUE(plain.ends_with("+w=="));
  EXPECT_EQ(plain.front(), '+');
  EXPECT_EQ(InstanceIDWebSafeBase64(Bytes{0xfb, 0xff}), "-_8");

  const Bytes abc = {'a', 'b', 'c'};
  EXPECT_EQ(platform::Digest::hex(InstanceIDSHA1(abc)), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(InstanceIDJoinedText("com.example.app", {"pub %@", "x"}), "com.example.app\npub %@\nx");
  EXPECT_EQ(InstanceIDJoinedText("alone", {}), "alone");
}

}  // namespace
}  // namespace quillet::instanceid
