#include <gtest/gtest.h>

#include "http/serialization/NKDefaultHeaders.h"
#include "http/serialization/NKHTTPRequestSerializer.h"
#include "http/serialization/NKQueryStringPair.h"

namespace quillet::http {
namespace {

using platform::Error;
using platform::Value;

std::string query(const Value& parameters) { return NKQueryStringPair::queryStringFromParameters(parameters); }

TEST(NKQueryStringTest, SortsNestsAndEscapes) {
  Value flat;
  flat.set("b", "2");
  flat.set("a", "1");
  EXPECT_EQ(query(flat), "a=1&b=2");
  EXPECT_EQ(query(Value::dictionary({{"x", Value::dictionary({{"y", "1"}})}})), "x[y]=1");
  EXPECT_EQ(query(Value::dictionary({{"ids", Value::array({3, 1})}})), "ids[]=3&ids[]=1");
  EXPECT_EQ(query(Value::dictionary(
                {{"a", Value::dictionary({{"b", Value::array({Value::dictionary({{"d", "2"}, {"c", "1"}})})}})}})),
            "a[b][][c]=1&a[b][][d]=2");
  EXPECT_EQ(query(Value::dictionary({{"q", "a&b c"}})), "q=a%26b%20c");
  EXPECT_EQ(query(Value::dictionary({{"v", ":/?&=;+!@#$()',*"}})),
            "v=%3A%2F%3F%26%3D%3B%2B%21%40%23%24%28%29%27%2C%2A");
  // Brackets and dots stay in a field but not in a value; non-ASCII goes byte by byte.
  EXPECT_EQ(query(Value::dictionary({{"k[].x", "[].é"}})), "k[].x=%5B%5D.%C3%A9");
  EXPECT_EQ(query(Value::dictionary({{"flag", Value::null()}, {"n", 5}, {"t", true}})), "flag&n=5&t=1");
}

TEST(NKRequestSerializerTest, PlacesParametersByMethod) {
  NKHTTPRequestSerializer serializer(NKAppInfo{}, {"en"});
  const Value parameters = Value::dictionary({{"id", "7"}});
  Error error;
  auto get = serializer.requestWithMethod("GET", "http://h/api/showNews", parameters, &error);
  ASSERT_TRUE(get);
  EXPECT_EQ(get->URL, "http://h/api/showNews?id=7");
  EXPECT_TRUE(get->HTTPBody.empty());
  EXPECT_EQ(serializer.requestWithMethod("get", "http://h/a?x=1", parameters, &error)->URL, "http://h/a?x=1&id=7");
  EXPECT_EQ(serializer.requestWithMethod("DELETE", "http://h/a", parameters, &error)->URL, "http://h/a?id=7");
  EXPECT_EQ(serializer.requestWithMethod("GET", "http://h/a", Value(), &error)->URL, "http://h/a");

  auto post = serializer.requestWithMethod("POST", "http://h/a", parameters, &error);
  EXPECT_EQ(post->URL, "http://h/a");
  EXPECT_EQ(post->HTTPBodyString(), "id=7");
  EXPECT_EQ(post->valueForHTTPHeaderField("Content-Type"), "application/x-www-form-urlencoded");
  EXPECT_EQ(post->valueForHTTPHeaderField("Accept-Language"), "en;q=1");
}

TEST(NKRequestSerializerTest, HeadersSettingsAndFailures) {
  NKHTTPRequestSerializer serializer(NKAppInfo{}, {"en"});
  NKURLRequest own("http://h/a");
  own.setValueForHTTPHeaderField("mine", "User-Agent");
  Error error;
  EXPECT_EQ(serializer.requestBySerializingRequest(own, Value(), &error)->valueForHTTPHeaderField("User-Agent"),
            "mine");

  EXPECT_TRUE(serializer.observedChangedKeyPaths().empty());
  serializer.setTimeoutInterval(5);
  EXPECT_EQ(serializer.requestWithMethod("GET", "http://h/a", Value(), &error)->timeoutInterval, 5);
  serializer.setTimeoutInterval(std::nullopt);
  EXPECT_EQ(serializer.requestWithMethod("GET", "http://h/a", Value(), &error)->timeoutInterval, 60);

  EXPECT_FALSE(serializer.requestWithMethod("GET", "not a url", Value(), &error));
  EXPECT_EQ(error.code, -1000);

  serializer.setQueryStringSerializationWithBlock([](const Value&, Error* out) -> std::optional<std::string> {
    *out = Error("test", 9);
    return std::nullopt;
  });
  EXPECT_FALSE(serializer.requestWithMethod("GET", "http://h/a", Value::dictionary({{"a", 1}}), &error));
  EXPECT_EQ(error.domain, "test");
  serializer.setQueryStringSerializationWithStyle(1);  // no such style: no query at all
  EXPECT_EQ(serializer.requestWithMethod("GET", "http://h/a", Value::dictionary({{"a", 1}}), &error)->URL,
            "http://h/a");
}

TEST(NKDefaultHeadersTest, AcceptLanguageStopsAtHalf) {
  EXPECT_EQ(NKDefaultHeaders::acceptLanguage({"a", "b", "c", "d", "e", "f", "g"}),
            "a;q=1, b;q=0.9, c;q=0.8, d;q=0.7, e;q=0.6, f;q=0.5");
  EXPECT_EQ(NKDefaultHeaders::acceptLanguage({"de-DE", "en"}), "de-DE;q=1, en;q=0.9");
  EXPECT_FALSE(NKDefaultHeaders::acceptLanguage({}));
}

TEST(NKDefaultHeadersTest, UserAgentIsAscii) {
  NKAppInfo info;
  EXPECT_EQ(NKDefaultHeaders::userAgent(info), "Quillet/1.0 (Phone; PhoneOS 1.0; Scale/2.00)");
  info.executableName = "";
  info.bundleIdentifier = "com.example.reader";
  info.shortVersionString = "";
  info.bundleVersion = "42";
  info.deviceModel = "Téléphone Ωμέγα 日本";
  info.screenScale = 3;
  const std::string agent = NKDefaultHeaders::userAgent(info);
  for (char c : agent) EXPECT_LT(static_cast<unsigned char>(c), 0x80) << agent;
  EXPECT_EQ(agent.rfind("com.example.reader/42 (Telephone Omega ", 0), 0u) << agent;
  EXPECT_NE(agent.find("; PhoneOS 1.0; Scale/3.00)"), std::string::npos) << agent;
}

}  // namespace
}  // namespace quillet::http
