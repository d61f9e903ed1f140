#include "platform/value/Value.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/value/Error.h"

namespace quillet::platform {
namespace {

TEST(ValueTest, ScalarDescriptions) {
  EXPECT_EQ(Value().description(), "(null)");
  EXPECT_EQ(Value::null().description(), "<null>");
  EXPECT_EQ(Value(true).description(), "1");
  EXPECT_EQ(Value(false).description(), "0");
  EXPECT_EQ(Value(-42).description(), "-42");
  EXPECT_EQ(Value(0.1).description(), "0.1");
  EXPECT_EQ(Value(3.0).description(), "3");
  EXPECT_EQ(Value(0.1 + 0.2).description(), "0.30000000000000004");
  EXPECT_EQ(Value(-2.5).description(), "-2.5");
  EXPECT_EQ(Value(1e20).description(), "1e+20");
  EXPECT_EQ(Value(0.0001).description(), "0.0001");
  EXPECT_EQ(Value(0.00001234).description(), "1.234e-05");
  EXPECT_EQ(Value(123456789012.0).description(), "123456789012");
  EXPECT_EQ(Value(1e16).description(), "10000000000000000");
  EXPECT_EQ(Value(1e17).description(), "1e+17");
  EXPECT_EQ(Value(-0.0).description(), "-0");
  EXPECT_EQ(Value(INFINITY).description(), "inf");
  EXPECT_EQ(Value("a b").description(), "a b");
  EXPECT_EQ(Value::bytes(std::string_view("\x0a\x1b\x2c\x3d\x0e", 5)).description(), "<0a1b2c3d 0e>");
  EXPECT_EQ(Value::bytes(Value::Bytes{}).description(), "<>");
  EXPECT_EQ(Value::date(978307200).description(), "2001-01-01 00:00:00 +0000");
  EXPECT_EQ(Value::date(-0.5).description(), "1969-12-31 23:59:59 +0000");
  EXPECT_EQ(Value::date(1456790400 + 3723.9).description(), "2016-03-01 01:02:03 +0000");
}

TEST(ValueTest, CollectionDescriptions) {
  EXPECT_EQ(Value::array({1, "a b"}).description(), "(\n    1,\n    \"a b\"\n)");
  EXPECT_EQ(Value::array({}).description(), "(\n)");
  EXPECT_EQ(Value(Value::Dictionary{}).description(), "{\n}");
  // Keys sorted; anything but ASCII letters and digits is quoted, with escapes.
  Value dict = Value::dictionary({{"other key", 2},
                                  {"key", "value"},
                                  {"id_str", ""},
                                  {"q", "say \"hi\"\\\n"},
                                  {"n", Value::null()},
                                  {"r", 0.5},
                                  {"m", -1},
                                  {"b", true}});
  EXPECT_EQ(dict.description(),
            "{\n    b = 1;\n    \"id_str\" = \"\";\n    key = value;\n    m = \"-1\";\n    n = \"<null>\";\n"
            "    \"other key\" = 2;\n    q = \"say \\\"hi\\\"\\\\\\n\";\n    r = \"0.5\";\n}");
  // A nested collection starts with its own indent, as the phone prints it.
  Value nested = Value::dictionary(
      {{"result", Value::array({Value::dictionary({{"id", 1}}), Value::array({})})}, {"status", true}});
  EXPECT_EQ(nested.description(),
            "{\n"
            "    result =     (\n"
            "                {\n"
            "            id = 1;\n"
            "        },\n"
            "                (\n"
            "        )\n"
            "    );\n"
            "    status = 1;\n"
            "}");
}

TEST(ValueTest, ReadingsFollowNumberAndStringRules) {
  EXPECT_EQ(Value("  -12abc").integerValue(), -12);
  EXPECT_EQ(Value("12.9").integerValue(), 12);
  EXPECT_EQ(Value("99999999999999999999").integerValue(), INT64_MAX);
  EXPECT_EQ(Value("-99999999999999999999").integerValue(), INT64_MIN);
  EXPECT_EQ(Value("abc").integerValue(), 0);
  EXPECT_DOUBLE_EQ(Value(" +1.5e2x").doubleValue(), 150.0);
  EXPECT_DOUBLE_EQ(Value(".5").doubleValue(), 0.5);
  EXPECT_DOUBLE_EQ(Value("3e").doubleValue(), 3.0);
  EXPECT_DOUBLE_EQ(Value("1e999").doubleValue(), INFINITY);
  EXPECT_EQ(Value(".").doubleValue(), 0.0);
  EXPECT_EQ(Value(2.9).integerValue(), 2);
  EXPECT_EQ(Value(-2.9).integerValue(), -2);
  EXPECT_EQ(Value(1e30).integerValue(), INT64_MAX);
  EXPECT_EQ(Value(true).integerValue(), 1);
  for (const char* yes : {"true", "YES", "  y", "-005", "Tx"}) EXPECT_TRUE(Value(yes).boolValue()) << yes;
  for (const char* no : {"false", "no", "0", "", "000"}) EXPECT_FALSE(Value(no).boolValue()) << no;
  EXPECT_TRUE(Value(0.5).boolValue());
  EXPECT_FALSE(Value::null().boolValue());
  EXPECT_EQ(Value::null().integerValue(), 0);
}

TEST(ValueTest, AccessAndMutation) {
  Value v;
  v.set("a", 1);
  v.set("b", "x");
  EXPECT_TRUE(v.isDictionary());
  EXPECT_EQ(v["a"], Value(1));
  EXPECT_TRUE(v["missing"].isNil());
  v.set("a", Value());
  EXPECT_EQ(v.count(), 1u);
  EXPECT_TRUE(v.at(0).isNil());

  Value list;
  list.append(1);
  list.append("two");
  EXPECT_EQ(list.count(), 2u);
  EXPECT_EQ(list.at(1).string(), "two");
  EXPECT_TRUE(list.at(2).isNil());
  EXPECT_TRUE(list["a"].isNil());
  Value text("x");
  text.append(1);  // neither nil nor an array: left alone
  text.set("k", 1);
  EXPECT_EQ(text, Value("x"));
  EXPECT_THROW((void)text.arrayItems(), std::bad_variant_access);

  // Characters are counted as the phone does: UTF-16 units.
  EXPECT_EQ(Value("h\xc3\xa9\xf0\x9f\x98\x80").count(), 4u);
  EXPECT_EQ(Value::bytes(std::string_view("abc")).count(), 3u);
  EXPECT_EQ(Value(5).count(), 0u);
}

TEST(ValueTest, EqualityComparesNumbersByValue) {
  EXPECT_EQ(Value(1), Value(1.0));
  EXPECT_EQ(Value(true), Value(1));
  EXPECT_NE(Value(1), Value(1.5));
  EXPECT_NE(Value(1), Value("1"));
  EXPECT_NE(Value(), Value::null());
  EXPECT_EQ(Value::array({1, Value::null()}), Value::array({1.0, Value::null()}));
  EXPECT_NE(Value::array({1}), Value::array({1, 2}));
  EXPECT_EQ(Value::dictionary({{"a", Value::bytes(std::string_view("z"))}}),
            Value::dictionary({{"a", Value::bytes(std::string_view("z"))}}));
  EXPECT_NE(Value::date(1), Value::date(2));
  EXPECT_EQ(Value(NAN), Value(NAN));
}

TEST(ErrorTest, Descriptions) {
  Error plain("com.stikri.msg", 7);
  EXPECT_EQ(plain.localizedDescription(), "The operation couldn\u2019t be completed. (com.stikri.msg error 7.)");
  EXPECT_EQ(
      plain.description(),
      "Error Domain=com.stikri.msg Code=7 \"The operation couldn\u2019t be completed. (com.stikri.msg error 7.)\"");
  Error cocoa("NSCocoaErrorDomain", 3840, Value::dictionary({{"NSDebugDescription", "Garbage at end."}}));
  EXPECT_EQ(cocoa.localizedDescription(), "The operation couldn\u2019t be completed. (Cocoa error 3840.)");
  Error described("d", -1, Value::dictionary({{"NSLocalizedDescription", "Bad thing"}, {"a", 1}}));
  EXPECT_EQ(described.description(),
            "Error Domain=d Code=-1 \"Bad thing\" UserInfo={NSLocalizedDescription=Bad thing, a=1}");
}

}  // namespace
}  // namespace quillet::platform
