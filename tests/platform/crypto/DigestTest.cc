#include "platform/crypto/Digest.h"

#include <gtest/gtest.h>

#include "platform/crypto/Base64.h"

namespace quillet::platform {
namespace {

TEST(DigestTest, KnownAnswers) {
  EXPECT_EQ(Digest::hex(Digest::sha1("abc")), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(Digest::hex(Digest::md5("abc")), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(Digest::hex(Digest::md5("")), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(Digest::hex(Digest::sha256("abc")), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  std::string million(1000000, 'a');
  EXPECT_EQ(Digest::hex(Digest::sha1(million)), "34aa973cd4c4daa4f61eeb2bdbad27316534016f");
}

TEST(Base64Test, KnownAnswersBothWays) {
  const std::pair<const char*, const char*> vectors[] = {{"", ""},
                                                         {"f", "Zg=="},
                                                         {"fo", "Zm8="},
                                                         {"foo", "Zm9v"},
                                                         {"foob", "Zm9vYg=="},
                                                         {"fooba", "Zm9vYmE="},
                                                         {"foobar", "Zm9vYmFy"}};
  for (auto [plain, encoded] : vectors) {
    EXPECT_EQ(Base64::encode(std::string_view(plain)), encoded);
    auto decoded = Base64::decode(encoded);
    ASSERT_TRUE(decoded) << encoded;
    EXPECT_EQ(std::string(decoded->begin(), decoded->end()), plain);
  }
  std::vector<uint8_t> all(256);
  for (int i = 0; i < 256; ++i) all[i] = static_cast<uint8_t>(i);
  EXPECT_EQ(Base64::decode(Base64::encode(all)), all);
}

TEST(Base64Test, LineBreaksAndRejections) {
  std::string hundred(100, '\xff');
  std::string lines = Base64::encode(hundred, 64);
  ASSERT_EQ(lines.size(), 136u + 4u);
  EXPECT_EQ(lines.substr(64, 2), "\r\n");
  EXPECT_EQ(lines.substr(130, 2), "\r\n");
  EXPECT_FALSE(lines.ends_with("\r\n"));
  EXPECT_EQ(Base64::encode(hundred, 76, "\n").find('\n'), 76u);
  EXPECT_EQ(Base64::encode(std::string(48, 'x'), 64).find('\r'), std::string::npos);  // exactly one line

  EXPECT_FALSE(Base64::decode(lines));
  auto joined = Base64::decode(lines, true);
  ASSERT_TRUE(joined);
  EXPECT_EQ(joined->size(), 100u);
  for (const char* bad : {"Zg=", "Zg=a", "Z===", "====", "Zm9v!A==", "Zm=v", "Zm9vYg==Zm9v"}) {
    EXPECT_FALSE(Base64::decode(bad)) << bad;
  }
}

}  // namespace
}  // namespace quillet::platform
