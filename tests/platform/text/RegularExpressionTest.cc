#include "platform/text/RegularExpression.h"

#include <gtest/gtest.h>

namespace quillet::platform {
namespace {

TEST(RegularExpressionTest, LookBehindFindsTheVideoIdCaseInsensitively) {
  auto re = RegularExpression::create("(?<=v(=|/))([-a-zA-Z0-9_]+)|(?<=clips\\.example/)([-a-zA-Z0-9_]+)",
                                      RegularExpression::kCaseInsensitive);
  ASSERT_TRUE(re);
  auto m = re->firstMatch("https://www.example.com/watch?V=dQw4w9WgXcQ&t=1");
  ASSERT_TRUE(m);
  EXPECT_EQ(m->text(), "dQw4w9WgXcQ");
  EXPECT_EQ((*m)[1].text, "=");
  EXPECT_FALSE((*m)[3].matched);
  EXPECT_EQ((*m)[3].location, RegexGroup::npos);
  EXPECT_EQ(re->firstMatch("HTTPS://CLIPS.EXAMPLE/abc_-1")->text(), "abc_-1");
  EXPECT_FALSE(re->firstMatch("https://example.com/"));
}

TEST(RegularExpressionTest, RangesAreUtf16AndBytes) {
  auto re = RegularExpression::create("b+");
  // "é" is one UTF-16 unit and two bytes; "😀" is two units and four bytes.
  auto all = re->allMatches("é😀bb-b");
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(all[0][0].location, 3u);
  EXPECT_EQ(all[0][0].length, 2u);
  EXPECT_EQ(all[0][0].byteOffset, 6u);
  EXPECT_EQ(all[0][0].byteLength, 2u);
  EXPECT_EQ(all[1][0].location, 6u);
  EXPECT_EQ(all[1][0].byteOffset, 9u);
  EXPECT_EQ(RegularExpression::utf16Length("é😀bb-b"), 7u);
  // Invalid UTF-8 still maps back to the right bytes.
  auto odd = re->firstMatch(
      "\xff\xfe"
      "bb");
  EXPECT_EQ(odd->groups[0].byteOffset, 2u);
  EXPECT_EQ(odd->text(), "bb");
}

TEST(RegularExpressionTest, WholeTextMatchReplaceAndCompileErrors) {
  auto email = RegularExpression::create("[A-Z0-9a-z._%+-]+@[A-Za-z0-9.-]+\\.[A-Za-z]{2,4}");
  EXPECT_TRUE(email->matchesWholeText("a.b@example.com"));
  EXPECT_FALSE(email->matchesWholeText("a.b@example.com "));
  EXPECT_FALSE(email->matchesWholeText("a@example.comxyz"));
  EXPECT_EQ(email->numberOfMatches("x a@b.cd y e@f.gh"), 2u);

  auto topic = RegularExpression::create("/topics/([a-zA-Z0-9-_.~%]+)");
  EXPECT_EQ(topic->numberOfCaptureGroups(), 1u);
  EXPECT_EQ(topic->replaceAll("/topics/news and /topics/sport", "<$1>"), "<news> and <sport>");

  Error error;
  EXPECT_FALSE(RegularExpression::create("(unclosed", 0, &error));
  EXPECT_EQ(error.code, 2);
  EXPECT_FALSE(RegularExpression::create("a{2,1}"));
  auto literal = RegularExpression::create("a.b", RegularExpression::kIgnoreMetacharacters);
  EXPECT_FALSE(literal->firstMatch("axb"));
  EXPECT_TRUE(literal->firstMatch("xa.b"));
}

TEST(RegularExpressionTest, RunawayBacktrackingEndsAsNoMatch) {
  auto re = RegularExpression::create("(a+)+$");
  EXPECT_FALSE(re->firstMatch(std::string(40, 'a') + "b"));
}

}  // namespace
}  // namespace quillet::platform
