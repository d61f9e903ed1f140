#include "platform/text/DecimalNumber.h"

#include <gtest/gtest.h>

namespace quillet::platform {
namespace {

DecimalNumber parsed(const char* text) {
  Error error;
  auto number = DecimalNumber::parse(text, "en_US", &error);
  EXPECT_TRUE(number) << text << ": " << error.description();
  return number.value_or(DecimalNumber());
}

TEST(DecimalNumberTest, ParsesTheUsNumberRulesWhole) {
  EXPECT_EQ(parsed("1,234.5").description(), "1234.5");
  EXPECT_EQ(parsed("-0.99").description(), "-0.99");
  EXPECT_EQ(parsed("42").description(), "42");
  EXPECT_EQ(parsed("1.50").description(), "1.5");
  EXPECT_EQ(parsed("12345678901234567890").description(), "12345678901234567890");
  for (const char* bad : {"", "abc", "12abc", "1.2.3", "1 2", "--1", "\xff"}) {
    Error error;
    EXPECT_FALSE(DecimalNumber::parse(bad, "en_US", &error)) << bad;
    EXPECT_EQ(error.domain, DecimalNumber::kErrorDomain);
    EXPECT_EQ(error.code, DecimalNumber::kNotANumber) << bad;
  }
}

TEST(DecimalNumberTest, PricesTimesQuantitiesAreExact) {
  const DecimalNumber price = parsed("0.99");
  const DecimalNumber micros(1000000);
  auto priceMicros = price.multipliedBy(micros);
  ASSERT_TRUE(priceMicros);
  EXPECT_EQ(priceMicros->truncatedInteger(), 990000);
  auto value = DecimalNumber(3).multipliedBy(price)->multipliedBy(micros);
  ASSERT_TRUE(value);
  EXPECT_EQ(value->truncatedInteger(), 2970000);  // a double gives 2969999.9999999995
  EXPECT_EQ(DecimalNumber(3).multipliedBy(price)->description(), "2.97");
  EXPECT_DOUBLE_EQ(price.doubleValue(), 0.99);
  EXPECT_EQ(parsed("-7.9").truncatedInteger(), -7);
  EXPECT_TRUE(parsed("5.000").isInteger());
  EXPECT_FALSE(parsed("5.01").isInteger());
  EXPECT_EQ(parsed("2.50"), parsed("2.5"));

  const DecimalNumber huge = *DecimalNumber::fromPlainText("99999999999999999999999999999999999999");
  EXPECT_FALSE(huge.multipliedBy(DecimalNumber(10)));
  EXPECT_FALSE(huge.truncatedInteger());
  EXPECT_FALSE(DecimalNumber::fromPlainText("1E999"));
}

}  // namespace
}  // namespace quillet::platform
