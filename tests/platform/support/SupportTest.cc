#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "platform/support/Text.h"

namespace quillet::platform {
namespace {

TEST(SupportTest, TrimAndHex) {
  EXPECT_EQ(trim("  \tlaunch now \r\n"), "launch now");
  EXPECT_EQ(trim(" \t\n"), "");
  EXPECT_EQ(trim("x"), "x");
  const std::vector<uint8_t> bytes = {0x00, 0x0a, 0xff, 0x5c};
  EXPECT_EQ(hexString(bytes), "000aff5c");
  EXPECT_EQ(hexString(bytes, true), "000AFF5C");
  EXPECT_EQ(hexString({}), "");
}

}  // namespace
}  // namespace quillet::platform
