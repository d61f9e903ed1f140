// Key items in the keychain: reading pairs back, deleting them, and the app identity.
#include <gtest/gtest.h>

#include <cstring>

#include "KeyPairTestEnvironment.h"
#include "instanceid/keypair/InstanceIDKeyPair.h"
#include "instanceid/keypair/InstanceIDStringEncoding.h"
#include "support/LogCapture.h"

namespace quillet::instanceid {
namespace {

constexpr const char* kPrivateTag = "com.stikri.iid-|K|";
constexpr const char* kPublicTag = "com.stikri.iid-|P|";

TEST(InstanceIDKeyPairTest, StoredItemsReadBackAsAValidPair) {
  testing::KeyPairTestEnvironment install;
  platform::Error error;
  EXPECT_FALSE(InstanceIDKeyPair::keyPairForPrivateKeyTag("", kPublicTag, *install.env, &error));
  EXPECT_EQ(error.code, 2002);
  EXPECT_FALSE(InstanceIDKeyPair::keyPairForPrivateKeyTag(kPrivateTag, kPublicTag, *install.env, &error));
  EXPECT_EQ(error.code, 2001);
  EXPECT_FALSE(InstanceIDKeyPair::keyDataWithTag("", *install.env));

  const platform::RsaKeyPair& key = testing::sharedTestKey();
  install.addKeyItems(key, kPrivateTag, kPublicTag);
  const auto pair = InstanceIDKeyPair::keyPairForPrivateKeyTag(kPrivateTag, kPublicTag, *install.env, &error);
  ASSERT_TRUE(pair);
  EXPECT_TRUE(pair->isValid());
  EXPECT_EQ(pair->publicKeyData(), key.publicKeyDer());
  EXPECT_EQ(pair->privateKeyData(), key.privateKeyDer());
  EXPECT_EQ(pair->publicKey()->pkcs1Der(), key.publicKeyDer());
}

TEST(InstanceIDKeyPairTest, UnreadableKeyBytesCountAsAMissingItem) {
  testing::KeyPairTestEnvironment install;
  install.addKeyItems(testing::sharedTestKey(), kPrivateTag, "other");
  platform::KeychainItem broken;
  broken.itemClass = platform::KeychainItemClass::Key;
  broken.applicationTag.assign(kPublicTag, kPublicTag + std::strlen(kPublicTag));
  broken.attributes = {{"keyType", platform::Value("RSA")}, {"keyClass", platform::Value("public")}};
  broken.data = {0x30, 0x03, 0x02, 0x01};
  ASSERT_EQ(install.keychain->add(broken), 0);

  quillet::testing::LogCapture log;
  platform::Error error;
  EXPECT_FALSE(InstanceIDKeyPair::keyPairForPrivateKeyTag(kPrivateTag, kPublicTag, *install.env, &error));
  EXPECT_EQ(error.code, 2001);
  EXPECT_TRUE(log.contains("Unable to read key com.stikri.iid-|P|"));
}

TEST(InstanceIDKeyPairTest, DeletingSucceedsWhenEitherItemIsGoneOrRemoved) {
  testing::KeyPairTestEnvironment install;
  install.addKeyItems(testing::sharedTestKey(), kPrivateTag, "unrelated");
  platform::Error error;
  EXPECT_TRUE(InstanceIDKeyPair::deleteKeyPairWithPrivateTag(kPrivateTag, kPublicTag, *install.env, &error));
  EXPECT_EQ(install.keyItemCount(), 1u);  // only the unrelated one is left
  EXPECT_TRUE(InstanceIDKeyPair::deleteKeyPairWithPrivateTag(kPrivateTag, kPublicTag, *install.env, &error));
}

TEST(InstanceIDKeyPairTest, AppIdentityIsElevenWebsafeCharactersWithHighNibbleSeven) {
  const platform::RsaKeyPair& key = testing::sharedTestKey();
  const InstanceIDKeyPair pair(key, key.publicKey(), key.publicKeyDer(), key.privateKeyDer());
  const std::optional<std::string> identity = InstanceIDKeyPair::appIdentityWithKeyPair(pair);
  ASSERT_TRUE(identity);
  ASSERT_EQ(identity->size(), 11u);
  EXPECT_NE(std::string("cdef").find(identity->front()), std::string::npos) << *identity;
  const auto decoded = InstanceIDStringEncoding::rfc4648Base64WebsafeStringEncoding().decode(*identity);
  ASSERT_TRUE(decoded);
  ASSERT_EQ(decoded->size(), 8u);
  EXPECT_EQ((*decoded)[0] >> 4, 0x7);
  EXPECT_EQ(InstanceIDKeyPair::appIdentityWithKeyPair(pair), identity);

  quillet::testing::LogCapture log;
  const InstanceIDKeyPair noPublicKey(key, std::nullopt, {}, {});
  EXPECT_FALSE(noPublicKey.isValid());
  EXPECT_FALSE(InstanceIDKeyPair::appIdentityWithKeyPair(noPublicKey));
  EXPECT_TRUE(log.contains("Unable to create a valid asymmetric crypto key"));
}

}  // namespace
}  // namespace quillet::instanceid
