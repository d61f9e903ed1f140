#include "platform/value/Format.h"

#include <gtest/gtest.h>

namespace quillet::platform {
namespace {

TEST(FormatTest, ObjectConversion) {
  EXPECT_EQ(format("%@/%@", "x", 3), "x/3");
  EXPECT_EQ(format("%@|%@|%@", Value(), Value::null(), true), "(null)|<null>|1");
  EXPECT_EQ(format("%@", {Value::array({1, "a b"})}), "(\n    1,\n    \"a b\"\n)");
  EXPECT_EQ(format("%@ %@", 0.5), "0.5 (null)");  // missing arguments are nil
  EXPECT_EQ(format("%@th %@", Value(), Value()), "(null)th (null)");
  EXPECT_EQ(format("%@-%@", "ios", std::string("1.1.4")), "ios-1.1.4");
  EXPECT_EQ(format("[%5@][%-4@]", "ab", 1), "[   ab][1   ]");
}

TEST(FormatTest, IntegerConversions) {
  EXPECT_EQ(format("%d %i %ld %lld", 1, -2, 3L, -4LL), "1 -2 3 -4");
  EXPECT_EQ(format("%d", 4294967297LL), "1");  // an int, as the C type says
  EXPECT_EQ(format("%lld", 4294967297LL), "4294967297");
  EXPECT_EQ(format("%u %lu %llu", -1, -1, -1), "4294967295 18446744073709551615 18446744073709551615");
  EXPECT_EQ(format("%x %X %llx %o", 255, 255, 0x1234567890LL, 8), "ff FF 1234567890 10");
  EXPECT_EQ(format("%hhd %hu", 257, 65537), "1 1");
  EXPECT_EQ(format("%05d|%-4d|%+d|%#x|%.3d", 42, 7, 5, 255, 9), "00042|7   |+5|0xff|009");
  EXPECT_EQ(format("%*d|%-*d|%.*d", 4, 1, 3, 2, 2, 3), "   1|2  |03");
  EXPECT_EQ(format("%d %d %d", "12abc", 2.9, Value()), "12 2 0");
  EXPECT_EQ(format("%c%c%c", 'o', "k!", 33), "ok!");
}

TEST(FormatTest, RealAndStringConversions) {
  EXPECT_EQ(format("%f %0.2f %.1f", 1.5, 2.0, 0.25), "1.500000 2.00 0.2");
  EXPECT_EQ(format("%0.1g %0.1g %g", 0.9, 0.5, 100000.0), "0.9 0.5 100000");
  EXPECT_EQ(format("%e %G", 1234.5, 1e-10), "1.234500e+03 1E-10");
  EXPECT_EQ(format("%f", "2.5x"), "2.500000");
  EXPECT_EQ(format("%s|%s|%s|%.2s|%4s", "abc", Value(), 12, "xyz", "a"), "abc|(null)|12|xy|   a");
  EXPECT_EQ(format("%@;q=%0.1g", "en", 1.0 - 0.1 * 2), "en;q=0.8");
  EXPECT_EQ(format("%@/%@ (%@; iOS %@; Scale/%0.2f)", "App", "1.0", "iPhone", "9.3", 2.0),
            "App/1.0 (iPhone; iOS 9.3; Scale/2.00)");
}

TEST(FormatTest, PercentAndBadConversions) {
  EXPECT_EQ(format("100%% sure"), "100% sure");
  EXPECT_EQ(format("%y %d", 5), "%y 5");  // a bad conversion takes no argument
  EXPECT_EQ(format("tail %"), "tail %");
  EXPECT_EQ(format("%5", 1), "%5");
  EXPECT_EQ(format("%l", 1), "%l");
  EXPECT_EQ(format("%n %p", 1), "%n %p");
  EXPECT_EQ(format("%99999999999d", 1), "%99999999999d");
  EXPECT_EQ(format("no conversions"), "no conversions");
  EXPECT_EQ(format(""), "");
}

TEST(FormatTest, LongOutputIsComplete) {
  std::string long_text(500, 'z');
  EXPECT_EQ(format("<%@>", long_text), "<" + long_text + ">");
  EXPECT_EQ(format("%300d", 1).size(), 300u);
}

}  // namespace
}  // namespace quillet::platform
