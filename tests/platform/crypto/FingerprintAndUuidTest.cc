#include <gtest/gtest.h>

#include <set>

#include "platform/crypto/Fingerprint.h"
#include "platform/crypto/Uuid.h"

namespace quillet::platform {
namespace {

TEST(FingerprintTest, GivesTheKnownValues) {
  EXPECT_EQ(fingerprint64(""), 0x9ae16a3b2f90404full);
  EXPECT_EQ(fingerprint64("a"), 0xb3454265b6df75e3ull);
  EXPECT_EQ(fingerprint64("1:1234567890:ios:abcdef"), 0x52a8c49b6a31f27aull);
  EXPECT_EQ(fingerprint64("The quick brown fox jumps over the lazy dog"), 0xabbe83f33b1b5134ull);
  EXPECT_EQ(fingerprint64(std::string_view("a\0b", 3)), fingerprint64(std::string_view("a\0b", 3)));
  EXPECT_NE(fingerprint64(std::string_view("a\0b", 3)), fingerprint64("a"));
}

TEST(UuidTest, RandomVersionFourInThePhonesForm) {
  std::set<std::string> seen;
  for (int i = 0; i < 100; ++i) {
    const std::string uuid = uuidString();
    ASSERT_TRUE(isUuidString(uuid)) << uuid;
    EXPECT_EQ(uuid[14], '4');
    EXPECT_NE(std::string("89AB").find(uuid[19]), std::string::npos);
    EXPECT_EQ(uuid.find_first_of("abcdef"), std::string::npos);
    seen.insert(uuid);
  }
  EXPECT_EQ(seen.size(), 100u);
  EXPECT_FALSE(isUuidString("E621E1F8C36C495A93FC0C247A3E6E5F"));
  EXPECT_TRUE(isUuidString("e621e1f8-c36c-495a-93fc-0c247a3e6e5f"));
}

}  // namespace
}  // namespace quillet::platform
