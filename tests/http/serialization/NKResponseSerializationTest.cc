#include <gtest/gtest.h>

#include "http/serialization/NKJSONResponseSerializer.h"
#include "http/serialization/NKSerializationError.h"

namespace quillet::http {
namespace {

using platform::Error;
using platform::HttpResponse;
using platform::Value;
using Bytes = std::vector<uint8_t>;

HttpResponse reply(int status, const std::string& contentType) {
  HttpResponse response;
  response.statusCode = status;
  response.url = "http://127.0.0.1/newsapp/api/showNews";
  if (!contentType.empty()) response.headers.add("Content-Type", contentType);
  return response;
}

Bytes bytes(std::string_view text) { return Bytes(text.begin(), text.end()); }

TEST(NKHTTPResponseSerializerTest, StatusBounds) {
  NKHTTPResponseSerializer serializer;
  const Bytes body = bytes("x");
  for (int status : {200, 204, 299}) {
    const HttpResponse response = reply(status, "text/plain");
    std::optional<Error> error;
    EXPECT_TRUE(serializer.validateResponse(&response, &body, &error)) << status;
    EXPECT_FALSE(error);
  }
  for (int status : {199, 300}) {
    const HttpResponse response = reply(status, "text/plain");
    std::optional<Error> error;
    EXPECT_FALSE(serializer.validateResponse(&response, &body, &error)) << status;
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code, -1011);
  }
  EXPECT_TRUE(serializer.validateResponse(nullptr, &body, nullptr));  // not an HTTP reply
}

TEST(NKHTTPResponseSerializerTest, NotFoundCarriesResponseAndBytes) {
  NKHTTPResponseSerializer serializer;
  const HttpResponse response = reply(404, "text/html");
  const Bytes body = bytes("<html>gone</html>");
  std::optional<Error> error;
  const Value object = serializer.responseObjectForResponse(&response, &body, &error);
  EXPECT_EQ(object, Value::bytes(body));  // the bytes are handed on in any case
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain, "com.kriozugin.error.serialization.response");
  EXPECT_EQ(error->code, -1011);
  EXPECT_EQ(error->userInfo["NSLocalizedDescription"], Value("Request failed: not found (404)"));
  EXPECT_EQ(error->userInfo["NSErrorFailingURLKey"], Value(response.url));
  EXPECT_EQ(error->userInfo["com.kriozugin.serialization.response.error.response"]["statusCode"], Value(404));
  EXPECT_EQ(error->userInfo["com.kriozugin.serialization.response.error.data"], Value::bytes(body));

  const HttpResponse empty = reply(204, "");
  const Bytes none;
  error.reset();
  EXPECT_EQ(serializer.responseObjectForResponse(&empty, &none, &error), Value::bytes(none));
  EXPECT_FALSE(error);
}

TEST(NKJSONResponseSerializerTest, ContentTypeRules) {
  NKJSONResponseSerializer serializer;
  const HttpResponse html = reply(200, "text/html; charset=UTF-8");
  const Bytes body = bytes("{\"a\":1}");
  std::optional<Error> error;
  EXPECT_TRUE(serializer.responseObjectForResponse(&html, &body, &error).isNil());
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code, -1016);
  EXPECT_EQ(error->userInfo["NSLocalizedDescription"], Value("Request failed: unacceptable content-type: text/html"));

  // An empty body of the wrong type is invalid, but there is nothing to report.
  const Bytes none;
  error.reset();
  EXPECT_FALSE(serializer.validateResponse(&html, &none, &error));
  EXPECT_FALSE(error);

  // Wrong status and wrong type: -1011 with the type's error beneath it; no object.
  const HttpResponse both = reply(500, "text/html");
  error.reset();
  EXPECT_TRUE(serializer.responseObjectForResponse(&both, &body, &error).isNil());
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code, -1011);
  EXPECT_EQ(NKSerializationError::underlyingError(*error)->code, -1016);

  // A refused status of the right type still decodes, with the error.
  const HttpResponse missing = reply(404, "application/json");
  error.reset();
  EXPECT_EQ(serializer.responseObjectForResponse(&missing, &body, &error), Value::dictionary({{"a", 1}}));
  EXPECT_EQ(error->code, -1011);
}

TEST(NKJSONResponseSerializerTest, BodiesThatAreNotJson) {
  NKJSONResponseSerializer serializer;
  const HttpResponse json = reply(200, "application/json");
  for (std::string_view text : {"", " "}) {
    const Bytes body = bytes(text);
    std::optional<Error> error;
    EXPECT_TRUE(serializer.responseObjectForResponse(&json, &body, &error).isNil());
    EXPECT_FALSE(error) << "body '" << text << "'";
  }
  const Bytes invalid = bytes("{\"a\":");
  std::optional<Error> error;
  EXPECT_TRUE(serializer.responseObjectForResponse(&json, &invalid, &error).isNil());
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain, "NSCocoaErrorDomain");
  EXPECT_EQ(error->code, 3840);

  // Bytes that are not text in the reply's character set give nothing, silently.
  const Bytes broken = {'"', 0xff, '"'};
  error.reset();
  EXPECT_TRUE(serializer.responseObjectForResponse(&json, &broken, &error).isNil());
  EXPECT_FALSE(error);

  // A lone surrogate is not text in UTF-16 either.
  const HttpResponse utf16 = reply(200, "application/json; charset=UTF-16LE");
  const Bytes lone = {'[', 0, 0x00, 0xd8, ']', 0};
  error.reset();
  EXPECT_TRUE(serializer.responseObjectForResponse(&utf16, &lone, &error).isNil());
  EXPECT_FALSE(error);
  const Bytes wide = {'[', 0, '1', 0, ']', 0};
  EXPECT_EQ(serializer.responseObjectForResponse(&utf16, &wide, &error), Value::array({1}));
}

TEST(NKJSONResponseSerializerTest, CharsetAndNullRemoval) {
  NKJSONResponseSerializer serializer;
  const HttpResponse latin = reply(200, "text/json; charset=iso-8859-1");
  const Bytes body = {'{', '"', 'a', '"', ':', '"', 0xe9, '"', '}'};
  std::optional<Error> error;
  EXPECT_EQ(serializer.responseObjectForResponse(&latin, &body, &error), Value::dictionary({{"a", "\u00e9"}}));

  serializer.removesKeysWithNullValues = true;
  const HttpResponse json = reply(200, "application/json");
  const Bytes nulls = bytes("{\"a\":null,\"b\":[{\"c\":null,\"d\":1},null]}");
  EXPECT_EQ(serializer.responseObjectForResponse(&json, &nulls, &error),
            Value::dictionary({{"b", Value::array({Value::dictionary({{"d", 1}}), Value::null()})}}));
}

}  // namespace
}  // namespace quillet::http
