// The toolbox's date conversions.
#include <gtest/gtest.h>

#include "news/support/Utilitiys.h"

namespace quillet::news {
namespace {

TEST(UtilitiysTest, DatesAndTimesConvertAtGmtOrGiveNothing) {
  EXPECT_EQ(Utilitiys::convert("01-01-2016"), "01 January,Friday");
  EXPECT_EQ(Utilitiys::convert("2016-01-01"), "");
  EXPECT_EQ(Utilitiys::convertTime("13:05:00"), "01:05 PM");
  EXPECT_EQ(Utilitiys::convertTime("25:00:00"), "");
  platform::View view("box");
  view.setFrame(platform::Rect{0, 0, 100, 40});
  Utilitiys::SetLayer(view);
  ASSERT_EQ(view.subviews().size(), 4u);
  EXPECT_EQ(view.viewWithName("edgeBottom")->frame()->y, 39.5);
}

}  // namespace
}  // namespace quillet::news
