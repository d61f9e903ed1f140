#include "platform/value/Json.h"

#include <gtest/gtest.h>

namespace quillet::platform {
namespace {

std::string debugText(const Error& e) { return e.userInfo["NSDebugDescription"].description(); }

TEST(JsonTest, DecodeKeepsTypes) {
  Error error;
  Value v = jsonDecode(
      R"({"i": 12, "neg": -3, "r": 1.0, "big": 18446744073709551615, "max": 9223372036854775807,
          "t": true, "f": false, "n": null, "s": "a\u00e9\ud83d\ude00\/", "a": [1, [2]], "d": {"k": "v"},
          "dup": 1, "dup": 2})",
      &error);
  ASSERT_TRUE(v.isDictionary()) << error.description();
  EXPECT_TRUE(v["i"].isInteger());
  EXPECT_EQ(v["neg"].integerValue(), -3);
  EXPECT_TRUE(v["r"].isDouble());
  EXPECT_TRUE(v["big"].isDouble());
  EXPECT_DOUBLE_EQ(v["big"].doubleValue(), 18446744073709551615.0);
  EXPECT_EQ(v["max"].integerValue(), INT64_MAX);
  EXPECT_TRUE(v["t"].isBool());
  EXPECT_TRUE(v["n"].isNull());
  EXPECT_EQ(v["s"].string(), "a\xc3\xa9\xf0\x9f\x98\x80/");
  EXPECT_EQ(v["a"].at(1).at(0), Value(2));
  EXPECT_EQ(v["d"]["k"].string(), "v");
  EXPECT_EQ(v["dup"], Value(2));
  EXPECT_EQ(jsonDecode("\xef\xbb\xbf[1]"), Value::array({1}));
}

TEST(JsonTest, FragmentsOnlyWhenAllowed) {
  Error error;
  EXPECT_TRUE(jsonDecode("\"x\"", &error).isNil());
  EXPECT_EQ(error.domain, "NSCocoaErrorDomain");
  EXPECT_EQ(error.code, 3840);
  EXPECT_EQ(debugText(error), "JSON text did not start with array or object and option to allow fragments not set.");
  EXPECT_EQ(jsonDecode("\"x\"", nullptr, true), Value("x"));
  EXPECT_TRUE(jsonDecode(" null ", nullptr, true).isNull());
}

TEST(JsonTest, FailuresGiveNilAndAnError) {
  struct Case {
    std::string text;
    std::string reason;
  };
  for (const Case& c : std::vector<Case>{{"", "No value."},
                                         {"  \n", "No value."},
                                         {"[1] x", "Garbage at end."},
                                         {"{\"a\":1", "Unexpected end of file."},
                                         {"[1,]", "Invalid value around character 4."},
                                         {"{a:1}", "Invalid value around character 2."},
                                         {"[\"\xff\"]", "Unable to convert data to string around character 3."},
                                         {"[1e999]", "Number wound up as NaN around character 6."},
                                         {std::string("[1]\0x", 5), "Invalid value around character 3."},
                                         {std::string("[\0]", 3), "Invalid value around character 1."}}) {
    Error error;
    EXPECT_TRUE(jsonDecode(c.text, &error).isNil()) << c.text;
    EXPECT_EQ(error.code, 3840) << c.text;
    EXPECT_EQ(debugText(error), c.reason) << c.text;
  }
  EXPECT_TRUE(jsonDecode("[1", nullptr).isNil());  // no error out-argument: still no crash
}

TEST(JsonTest, NestingIsLimited) {
  std::string ok = std::string(kJsonMaxDepth, '[') + std::string(kJsonMaxDepth, ']');
  EXPECT_TRUE(jsonDecode(ok).isArray());
  Error error;
  std::string deep = std::string(100000, '[') + std::string(100000, ']');
  EXPECT_TRUE(jsonDecode(deep, &error).isNil());
  EXPECT_EQ(debugText(error), "Too many nested arrays or dictionaries.");
}

TEST(JsonTest, EncodeCompactAndPretty) {
  Value v = Value::dictionary(
      {{"b", Value::array({1, 2.5, true, Value::null()})}, {"a", "x/\"\n\x01"}, {"e", Value::array({})}});
  EXPECT_EQ(jsonEncode(v), R"({"a":"x\/\"\n\u0001","b":[1,2.5,true,null],"e":[]})");
  EXPECT_EQ(jsonEncode(v, true),
            "{\n  \"a\" : \"x\\/\\\"\\n\\u0001\",\n  \"b\" : [\n    1,\n    2.5,\n    true,\n    null\n  ],\n"
            "  \"e\" : []\n}");
  EXPECT_EQ(jsonDecode(jsonEncode(v)), v);
  EXPECT_EQ(jsonEncode(Value("fragment")), "\"fragment\"");
}

TEST(JsonTest, UnencodableValuesGiveAnError) {
  for (const Value& bad : {Value(), Value::bytes(std::string_view("x")), Value::date(0), Value(1.0 / 0.0),
                           Value("\xc0\xaf"), Value::array({Value::dictionary({{"k", Value::date(1)}})})}) {
    Error error;
    EXPECT_EQ(jsonEncode(bad, false, &error), "") << bad.description();
    EXPECT_EQ(error.code, 3840);
    EXPECT_FALSE(debugText(error).empty());
  }
}

}  // namespace
}  // namespace quillet::platform
