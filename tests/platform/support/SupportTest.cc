#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "platform/support/SharedSlot.h"
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

struct Counter {
  int made = 0;
};

TEST(SupportTest, ASharedSlotMakesOnceUntilSetAndASetOneWins) {
  int makes = 0;
  auto make = [&] {
    ++makes;
    return std::make_shared<Counter>();
  };
  auto first = SharedSlot<Counter>::get(make);
  EXPECT_EQ(SharedSlot<Counter>::get(make), first);
  EXPECT_EQ(makes, 1);
  auto installed = std::make_shared<Counter>();
  SharedSlot<Counter>::set(installed);
  EXPECT_EQ(SharedSlot<Counter>::get(make), installed);
  SharedSlot<Counter>::set(nullptr);
  EXPECT_EQ(SharedSlot<Counter>::get(nullptr), nullptr);
}

}  // namespace
}  // namespace quillet::platform
