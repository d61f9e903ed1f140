#include "platform/text/Url.h"

#include <gtest/gtest.h>

#include "platform/text/PercentEscape.h"

namespace quillet::platform {
namespace {

TEST(UrlTest, ParsesPartsAsWritten) {
  auto url = Url::parse("HTTPS://me:pw@news.example.com:8443/api/v1/list%20all?page=2&x=%26#top");
  ASSERT_TRUE(url);
  EXPECT_EQ(url->scheme(), "https");
  EXPECT_EQ(url->user(), "me");
  EXPECT_EQ(url->password(), "pw");
  EXPECT_EQ(url->host(), "news.example.com");
  EXPECT_EQ(url->port(), 8443);
  EXPECT_EQ(url->path(), "/api/v1/list%20all");
  EXPECT_EQ(url->query(), "page=2&x=%26");
  EXPECT_EQ(url->fragment(), "top");

  auto plain = Url::parse("http://example.com/a");
  EXPECT_FALSE(plain->port());
  EXPECT_FALSE(plain->query());
  EXPECT_EQ(Url::parse("inlineplayer://onReady?data=null")->host(), "onReady");
  auto blank = Url::parse("about:blank");
  ASSERT_TRUE(blank);
  EXPECT_TRUE(blank->isOpaque());
  EXPECT_EQ(blank->path(), "blank");
  EXPECT_EQ(blank->host(), "");
}

TEST(UrlTest, RejectsMalformedText) {
  Error error;
  EXPECT_FALSE(Url::parse("not a url", &error));
  EXPECT_EQ(error.code, 4);
  EXPECT_FALSE(Url::parse("/relative/only"));
  EXPECT_FALSE(Url::parse("http://exa mple.com/"));
  EXPECT_FALSE(Url::parse("http://example.com:99999/"));
  EXPECT_FALSE(Url::parse(""));
}

TEST(UrlTest, ResolvesReferencesAgainstABase) {
  auto base = Url::parse("http://example.com/news/today/list?x=1#f");
  ASSERT_TRUE(base);
  EXPECT_EQ(base->resolve("../a?b")->absoluteString(), "http://example.com/news/a?b");
  EXPECT_EQ(base->resolve("/root")->absoluteString(), "http://example.com/root");
  EXPECT_EQ(base->resolve("other")->absoluteString(), "http://example.com/news/today/other");
  EXPECT_EQ(base->resolve("https://elsewhere.org/p")->host(), "elsewhere.org");
  EXPECT_EQ(base->resolve("mailto:a@b.c")->scheme(), "mailto");
  EXPECT_FALSE(Url::parse("about:blank")->resolve("x"));
}

TEST(PercentEscapeTest, EscapesAllButTheAllowedSet) {
  std::string field = PercentEscape::allowedSet(PercentEscape::kLegacyUrlLegal, ":/?&=;+!@#$()',*", "[].");
  std::string value = PercentEscape::allowedSet(PercentEscape::kLegacyUrlLegal, ":/?&=;+!@#$()',*");
  EXPECT_EQ(PercentEscape::escape("x[y]", field), "x[y]");
  EXPECT_EQ(PercentEscape::escape("x[y]", value), "x%5By%5D");
  EXPECT_EQ(PercentEscape::escape("a b&c=d~é", value), "a%20b%26c%3Dd~%C3%A9");
  EXPECT_EQ(PercentEscape::escape("100%", PercentEscape::kUnreserved), "100%25");

  EXPECT_EQ(PercentEscape::unescape("a%20b%26c%3dd+%C3%A9"), "a b&c=d+é");
  EXPECT_FALSE(PercentEscape::unescape("bad%2"));
  EXPECT_FALSE(PercentEscape::unescape("bad%zz"));
  EXPECT_FALSE(PercentEscape::unescape("%C3"));  // not UTF-8
}

}  // namespace
}  // namespace quillet::platform
