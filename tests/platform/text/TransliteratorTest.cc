#include "platform/text/Transliterator.h"

#include <gtest/gtest.h>

namespace quillet::platform {
namespace {

TEST(TransliteratorTest, MakesAsciiFromAnyScript) {
  auto toAscii = Transliterator::create("Any-Latin; Latin-ASCII; [:^ASCII:] Remove");
  ASSERT_TRUE(toAscii);
  EXPECT_EQ(toAscii->transliterate("Привет"), "Privet");
  EXPECT_EQ(toAscii->transliterate("Quillet/1.0 (Ĳsselmeer's Phone; 9.3; Scale/2.00)"),
            "Quillet/1.0 (IJsselmeer's Phone; 9.3; Scale/2.00)");
  Transliterator copy = *toAscii;
  EXPECT_EQ(copy.transliterate("Straße ☃"), "Strasse ");
}

TEST(TransliteratorTest, AcceptsRulesAndRejectsNonsense) {
  auto rules = Transliterator::create("a > b; c > d;");
  ASSERT_TRUE(rules);
  EXPECT_EQ(rules->transliterate("acca"), "bddb");
  Error error;
  EXPECT_FALSE(Transliterator::create("No-Such-Transform; ]]", &error));
  EXPECT_EQ(error.code, 3);
}

}  // namespace
}  // namespace quillet::platform
