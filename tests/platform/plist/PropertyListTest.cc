#include "platform/plist/PropertyList.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillet::platform {
namespace {

using Format = PropertyList::Format;

Value everyType() {
  Value nested = Value::dictionary({{"empty array", Value(Value::Array{})},
                                    {"empty dict", Value(Value::Dictionary{})},
                                    {"list", Value::array({1, "two", 3.5})}});
  return Value::dictionary({
      {"true", true},
      {"false", false},
      {"zero", 0},
      {"negative", -42},
      {"big", Value(static_cast<long long>(1) << 62)},
      {"min", Value(std::numeric_limits<long long>::min())},
      {"max", Value(std::numeric_limits<long long>::max())},
      {"pi", 3.141592653589793},
      {"third", 1.0 / 3},
      {"tiny", -1e-300},
      {"huge", 1e300},
      {"text", "héllo <&> \"quoted\" ]]>"},
      {"empty text", ""},
      {"bytes", Value::bytes(std::string("\0\x01\xff\x80", 4))},
      {"no bytes", Value::bytes(std::string_view())},
      {"date", Value::date(1'800'000'000)},
      {"old date", Value::date(-1'000'000'000)},
      {"utf8 ключ", nested},
  });
}

class PropertyListRoundTrip : public ::testing::TestWithParam<Format> {};

TEST_P(PropertyListRoundTrip, EveryTypeSurvives) {
  Value original = everyType();
  Error error;
  auto encoded = PropertyList::write(original, GetParam(), &error);
  ASSERT_TRUE(encoded) << error.description();
  Format format{};
  Value decoded = PropertyList::read(*encoded, &error, &format);
  EXPECT_EQ(format, GetParam());
  EXPECT_EQ(decoded, original) << decoded.description();
  // A scalar can stand at the top too.
  for (Value scalar : {Value("top"), Value(7), Value::date(0)}) {
    auto bytes = PropertyList::write(scalar, GetParam());
    ASSERT_TRUE(bytes);
    EXPECT_EQ(PropertyList::read(*bytes), scalar);
  }
}

// The binary form keeps dates to the microsecond, either side of 2001; XML to the second.
TEST(PropertyListTest, BinaryDatesKeepFractions) {
  for (double seconds : {1'800'000'000.25, -1'000'000'000.5, 978'307'198.75}) {
    auto encoded = PropertyList::write(Value::date(seconds), Format::Binary);
    ASSERT_TRUE(encoded);
    EXPECT_DOUBLE_EQ(PropertyList::read(*encoded).dateSeconds(), seconds);
  }
}

INSTANTIATE_TEST_SUITE_P(BothForms, PropertyListRoundTrip, ::testing::Values(Format::XML, Format::Binary));

TEST(PropertyListTest, ReadsHandWrittenXml) {
  const char* xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
  <key>IIDLastCheckinTimestampKey</key><integer>1500000000000</integer>
  <key>d</key><data>AAEC</data>
  <key>when</key><date>2001-01-01T00:00:10Z</date>
  <key>yes</key><true/>
</dict></plist>)";
  Value v = PropertyList::read(xml);
  EXPECT_EQ(v["IIDLastCheckinTimestampKey"].integerValue(), 1500000000000);
  EXPECT_EQ(v["d"], Value::bytes(std::string("\0\1\2", 3)));
  EXPECT_EQ(v["when"], Value::date(978307210));
  EXPECT_EQ(v["yes"], Value(true));
}

TEST(PropertyListTest, MalformedInputIsAnError) {
  auto good = PropertyList::write(everyType(), Format::Binary);
  ASSERT_TRUE(good);
  const std::string inputs[] = {
      "",
      "not a plist",
      "<plist><dict><key>a</key><integer>1</integer><key>b</key><true/>",
      "<plist><dict><real>1</real></dict></plist>",
      "<plist><dict><key>a</key><integer>1</integer>",
      "<plist><array><string>x</array>",
      "bplist00",
      good->substr(0, good->size() / 2),
      good->substr(0, good->size() - 1),
  };
  for (const auto& input : inputs) {
    Error error;
    EXPECT_TRUE(PropertyList::read(input, &error).isNil()) << input.size();
    EXPECT_EQ(error.domain, PropertyList::errorDomain);
    EXPECT_EQ(error.code, PropertyList::readCorruptError);
  }
  // Corrupt every byte of the binary form in turn: whatever results, no crash.
  for (size_t i = 8; i < good->size(); ++i) {
    std::string damaged = *good;
    damaged[i] = static_cast<char>(damaged[i] ^ 0x5a);
    PropertyList::read(damaged);
  }
}

TEST(PropertyListTest, RefusesValuesThatAreNotPropertyLists) {
  Value deep = Value::array({1});
  for (int i = 0; i < PropertyList::maxDepth + 1; ++i) deep = Value::array({deep});
  const Value invalid[] = {Value(),
                           Value::null(),
                           Value::array({Value::null()}),
                           Value::dictionary({{"k", Value()}}),
                           Value(std::string("a\0b", 3)),
                           Value("\xb7"),
                           Value::dictionary({{"\xc3", 1}}),
                           Value::date(1e12),
                           deep};
  for (const auto& value : invalid) {
    Error error;
    EXPECT_FALSE(PropertyList::isPropertyList(value));
    EXPECT_FALSE(PropertyList::write(value, Format::XML, &error));
    EXPECT_EQ(error.code, PropertyList::writeInvalidError);
  }
}

}  // namespace
}  // namespace quillet::platform
