#include <gtest/gtest.h>

#include "platform/net/HttpResponse.h"

namespace quillet::platform {
namespace {

TEST(HttpResponseTest, ReadsMediaTypeAndCharsetFromContentType) {
  HttpResponse response;
  EXPECT_EQ(response.mimeType(), "");
  EXPECT_EQ(response.textEncodingName(), "");
  response.headers.add("content-type", " Application/JSON ; boundary=x;CharSet=\"UTF-8\"");
  EXPECT_EQ(response.mimeType(), "application/json");
  EXPECT_EQ(response.textEncodingName(), "UTF-8");
  response.headers.set("Content-Type", "text/html;charset=iso-8859-1");
  EXPECT_EQ(response.mimeType(), "text/html");
  EXPECT_EQ(response.textEncodingName(), "iso-8859-1");
  response.headers.set("Content-Type", "text/plain; charsetx=1");
  EXPECT_EQ(response.textEncodingName(), "");
}

TEST(HttpResponseTest, HeadersKeepOrderAndIgnoreCaseOnLookUp) {
  HttpHeaders headers{{"Set-Cookie", "a=1"}, {"X-One", "1"}, {"set-cookie", "b=2"}};
  EXPECT_EQ(headers.value("SET-COOKIE"), "a=1");
  EXPECT_FALSE(headers.value("Set-Cookies"));
  headers.set("SET-cookie", "c=3");
  ASSERT_EQ(headers.size(), 2u);
  EXPECT_EQ(headers.fields()[0], (HttpHeaders::Field{"Set-Cookie", "c=3"}));
  EXPECT_EQ(headers.remove("x-one"), 1u);
  headers.set("New", "");
  EXPECT_EQ(headers.fields().back().first, "New");
}

}  // namespace
}  // namespace quillet::platform
