#include "platform/crypto/RsaKeyPair.h"

#include <gtest/gtest.h>

#include <string>

namespace quillet::platform {
namespace {

// One key for the suite: generation is slow under the sanitizers.
const RsaKeyPair& sharedKey() {
  static const RsaKeyPair key = *RsaKeyPair::generate();
  return key;
}

std::span<const uint8_t> bytesOf(std::string_view s) { return {reinterpret_cast<const uint8_t*>(s.data()), s.size()}; }

TEST(RsaKeyPairTest, RawSigningIsUndoneByThePublicKey) {
  const RsaKeyPair& key = sharedKey();
  ASSERT_EQ(key.blockSize(), 256u);
  std::string text(256, 'p');
  auto full = key.rawPrivateOperation(bytesOf(text));
  ASSERT_TRUE(full);
  EXPECT_EQ(full->size(), 256u);
  EXPECT_EQ(key.publicKey().rawPublicOperation(*full), std::vector<uint8_t>(text.begin(), text.end()));

  // A short slice is a number: zero-filled on the left.
  auto shortSlice = key.rawPrivateOperation(bytesOf("com.example.app\nkey"));
  ASSERT_TRUE(shortSlice);
  EXPECT_EQ(shortSlice->size(), 256u);
  auto recovered = key.publicKey().rawPublicOperation(*shortSlice);
  ASSERT_TRUE(recovered);
  EXPECT_EQ(std::string(recovered->end() - 19, recovered->end()), "com.example.app\nkey");
  EXPECT_EQ((*recovered)[0], 0);

  Error error;
  EXPECT_FALSE(key.rawPrivateOperation(std::vector<uint8_t>(257, 1), &error));
  EXPECT_EQ(error.domain, "quillet.platform.crypto");
  EXPECT_FALSE(key.rawPrivateOperation(std::vector<uint8_t>(256, 0xff)));  // not below the modulus
  EXPECT_FALSE(key.publicKey().rawPublicOperation(std::vector<uint8_t>(10, 1)));
}

TEST(RsaKeyPairTest, DerExportsReimport) {
  const RsaKeyPair& key = sharedKey();
  std::vector<uint8_t> pub = key.publicKeyDer();
  // SEQUENCE of 266 bytes: a 257-byte modulus and the exponent 65537.
  ASSERT_EQ(pub.size(), 270u);
  EXPECT_EQ(std::vector<uint8_t>(pub.begin(), pub.begin() + 4), (std::vector<uint8_t>{0x30, 0x82, 0x01, 0x0a}));
  EXPECT_EQ(std::vector<uint8_t>(pub.end() - 5, pub.end()), (std::vector<uint8_t>{0x02, 0x03, 0x01, 0x00, 0x01}));

  auto again = RsaKeyPair::fromPrivateKeyDer(key.privateKeyDer());
  ASSERT_TRUE(again);
  EXPECT_EQ(again->publicKeyDer(), pub);
  std::string text = "signed twice";
  EXPECT_EQ(again->rawPrivateOperation(bytesOf(text)), key.rawPrivateOperation(bytesOf(text)));

  auto imported = RsaPublicKey::fromPkcs1Der(pub);
  ASSERT_TRUE(imported);
  EXPECT_EQ(imported->pkcs1Der(), pub);
  auto signature = key.rawPrivateOperation(bytesOf(text));
  auto recovered = imported->rawPublicOperation(*signature);
  EXPECT_EQ(std::string(recovered->end() - 12, recovered->end()), text);

  Error error;
  std::vector<uint8_t> junk = pub;
  junk.push_back(0);
  EXPECT_FALSE(RsaPublicKey::fromPkcs1Der(junk, &error));
  EXPECT_FALSE(RsaPublicKey::fromPkcs1Der(std::vector<uint8_t>(pub.begin(), pub.end() - 1)));
  EXPECT_FALSE(RsaKeyPair::fromPrivateKeyDer(pub));
  EXPECT_FALSE(RsaKeyPair::fromPrivateKeyDer({}));
}

}  // namespace
}  // namespace quillet::platform
