// The text encoder: alphabets, padding, and decoding with its rejections.
#include <gtest/gtest.h>

#include "instanceid/keypair/InstanceIDStringEncoding.h"

namespace quillet::instanceid {
namespace {

using Bytes = platform::Value::Bytes;

Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

TEST(InstanceIDStringEncodingTest, WebsafeBase64PadsToGroupsOnlyWhenAsked) {
  InstanceIDStringEncoding encoding = InstanceIDStringEncoding::rfc4648Base64WebsafeStringEncoding();
  EXPECT_TRUE(encoding.doPad());
  const Bytes eight = {0xfb, 0xff, 0x00, 0x10, 0x83, 0x10, 0x51, 0x87};
  EXPECT_EQ(encoding.encode(eight), "-_8AEIMQUYc=");
  encoding.setDoPad(false);
  EXPECT_EQ(encoding.encode(eight), "-_8AEIMQUYc");
  EXPECT_EQ(encoding.encode({}), "");
  EXPECT_EQ(encoding.description(),
            "<Base64 StringEncoder: ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_>");
}

TEST(InstanceIDStringEncodingTest, AlphabetsMustBeAsciiPowersOfTwoWithoutRepeats) {
  EXPECT_FALSE(InstanceIDStringEncoding::stringEncodingWithString("abc"));
  EXPECT_FALSE(InstanceIDStringEncoding::stringEncodingWithString("abca"));
  EXPECT_FALSE(InstanceIDStringEncoding::stringEncodingWithString("a"));
  EXPECT_FALSE(InstanceIDStringEncoding::stringEncodingWithString("ab\xc3\xa9"));
  std::string all;
  for (int c = 0; c < 128; ++c) all.push_back(static_cast<char>(c));
  EXPECT_TRUE(InstanceIDStringEncoding::stringEncodingWithString(all));
  EXPECT_FALSE(InstanceIDStringEncoding::stringEncodingWithString(all + all));

  // Five bits a character pad to groups of eight characters.
  auto base32 = InstanceIDStringEncoding::stringEncodingWithString("ABCDEFGHIJKLMNOPQRSTUVWXYZ234567");
  ASSERT_TRUE(base32);
  base32->setPaddingChar('=');
  base32->setDoPad(true);
  EXPECT_EQ(base32->encode(bytesOf("foobar")), "MZXW6YTBOI======");
  EXPECT_EQ(base32->decode("MZXW6YTBOI======"), bytesOf("foobar"));
  auto binary = InstanceIDStringEncoding::stringEncodingWithString("01");
  ASSERT_TRUE(binary);
  EXPECT_EQ(binary->encode({0xa5}), "10100101");
}

TEST(InstanceIDStringEncodingTest, DecodeUndoesEncodeAndRejectsMalformedText) {
  InstanceIDStringEncoding encoding = InstanceIDStringEncoding::rfc4648Base64WebsafeStringEncoding();
  Bytes data;
  for (int length = 0; length < 12; ++length) {
    for (bool pad : {true, false}) {
      encoding.setDoPad(pad);
      EXPECT_EQ(encoding.decode(encoding.encode(data)), data) << length << pad;
    }
    data.push_back(static_cast<uint8_t>(0xf0 + length));
  }
  EXPECT_FALSE(encoding.decode("AB*C"));       // not in the alphabet
  EXPECT_FALSE(encoding.decode("AA=A"));       // data after padding
  EXPECT_FALSE(encoding.decode("AB"));         // leftover bits not zero
  EXPECT_FALSE(encoding.decode("A\xc3\xa9"));  // not ASCII
  EXPECT_EQ(encoding.decode("AA=="), Bytes{0});
}

}  // namespace
}  // namespace quillet::instanceid
