// The feed screen's state machine with replies handed to it directly.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "HomeTestSupport.h"
#include "news/home/HomeMenu.h"
#include "news/home/HomeMenuCells.h"

namespace quillet::news {
namespace {

using platform::Value;
using Fixture = testing::HomeFixture;

class HomeVCTest : public ::testing::Test {
 protected:
  void SetUp() override { home_ = fixture_.show(); }
  // Every toast that came on screen, after the queue has run out.
  std::vector<std::string> toasts() {
    fixture_.loop_->advance(60);
    return fixture_.toasts;
  }
  HomeOutlets& o() { return home_->outlets(); }

  Fixture fixture_;
  std::shared_ptr<HomeVC> home_;
};

TEST_F(HomeVCTest, LoadsStepThroughTheListWithinItsLimits) {
  EXPECT_EQ(home_->newsType(), "MyFeed");
  home_->showNewsSuccess(Fixture::reply({Fixture::story("1"), Fixture::story("2"), Fixture::story("3")}));
  EXPECT_EQ(o().lblNewsTitle->text(), "Story 1");
  EXPECT_EQ(o().lblPostedBy->text(), "Posted By Ada | 02nd Jan 2016");
  EXPECT_EQ(home_->showCount(), 1);

  home_->handleSwipe(platform::SwipeDirection::Right);  // at the first: nothing
  EXPECT_EQ(home_->showCount(), 1);
  home_->handleSwipe(platform::SwipeDirection::Left);
  home_->handleSwipe(platform::SwipeDirection::Left);
  home_->handleSwipe(platform::SwipeDirection::Left);  // at the last: nothing, no count
  EXPECT_EQ(home_->count(), 2);
  EXPECT_EQ(home_->showCount(), 3);
  home_->handleSwipe(platform::SwipeDirection::Right);  // shown again, counted again
  EXPECT_EQ(o().lblNewsTitle->text(), "Story 2");
  EXPECT_EQ(home_->showCount(), 4);
  EXPECT_EQ(o().swipeView->transition(), (platform::ViewTransition{"push", "fromLeft", 0.5}));
  EXPECT_DOUBLE_EQ(home_->angleRatio(), 0.5);

  // The card is drawn (and marked read) before the list is stored as unread,
  // so the first story stays unread; the ones swiped to later are read.
  home_->selectRecordFromDB("Unread");
  ASSERT_EQ(home_->arrNews().count(), 1u);
  EXPECT_EQ(home_->arrNews().at(0)["id"], Value("1"));
}

TEST_F(HomeVCTest, EmptyAndBadRepliesClearTheCardAndKeepTheMode) {
  home_->featuredNews();
  home_->showNewsSuccess(Fixture::reply({Fixture::story("1")}));
  home_->showNewsSuccess(Fixture::reply({}));
  EXPECT_EQ(home_->newsType(), "Featured");
  EXPECT_EQ(o().lblNewsTitle->text(), "");
  EXPECT_TRUE(o().imgNews->isHidden());
  EXPECT_TRUE(o().btnShare->isHidden());
  home_->showNewsSuccess(Value::dictionary({{"status", Value(true)}, {"result", Value::null()}}));
  home_->showNewsFail(Value());
  // Items with missing keys, nulls and numbers draw without a fault.
  home_->showNewsSuccess(Fixture::reply(
      {Value::dictionary(
           {{"id", Value(int64_t{7})}, {"new_title", Value::null()}, {"created_date", Value(int64_t{5})}}),
       Value(int64_t{3})}));
  EXPECT_EQ(o().lblPostedBy->text(), "Posted By (null) | (null)th (null)");
  home_->handleSwipe(platform::SwipeDirection::Left);
  EXPECT_EQ(home_->count(), 1);
  EXPECT_EQ(toasts(), (std::vector<std::string>{"No news to show.", "No news to show.", "Failed to show news."}));
}

TEST_F(HomeVCTest, APendingStoryIsFoundInEveryIdLoadedSinceTheRefresh) {
  home_->showNewsSuccess(Fixture::reply({Fixture::story("1"), Fixture::story("2")}));
  fixture_.defaults_.setObject(Value("2"), "NewsID");
  home_->showNewsSuccess(Fixture::reply({Fixture::story("8"), Fixture::story("9"), Fixture::story("10")}));
  EXPECT_EQ(home_->arrNewsID().count(), 5u);
  EXPECT_EQ(home_->count(), 1);  // the first place "2" ever had, used as an index of the new list
  EXPECT_EQ(o().lblNewsTitle->text(), "Story 9");
  EXPECT_EQ(o().lblCategoryTitle->text(), "All News");
  EXPECT_EQ(fixture_.defaults_.objectForKey("NewsID"), Value(""));

  // "9" stands at place 3 of the ids, beyond the new list of three; an unknown id is -1.
  fixture_.defaults_.setObject(Value("9"), "NewsID");
  EXPECT_THROW(home_->showNewsSuccess(Fixture::reply({Fixture::story("8"), Fixture::story("9"), Fixture::story("10")})),
               std::out_of_range);
  fixture_.defaults_.setObject(Value("404"), "NewsID");
  EXPECT_THROW(home_->showNewsSuccess(Fixture::reply({Fixture::story("1")})), std::out_of_range);
}

TEST_F(HomeVCTest, UnguardedReadsOfAnEmptyListEndTheProgram) {
  EXPECT_THROW(home_->gestureHandlerMethod(), std::out_of_range);
  EXPECT_THROW(home_->menu().changeImageSwitch(false), std::out_of_range);
}

TEST_F(HomeVCTest, BookmarksToggleAndTheBookmarkListKeepsItsCardOnRefresh) {
  home_->showNewsSuccess(Fixture::reply({Fixture::story("1"), Fixture::story("2"), Fixture::story("3")}));
  home_->handleSwipe(platform::SwipeDirection::Left);
  home_->gestureHandlerMethod();
  EXPECT_TRUE(home_->bookmark());
  EXPECT_EQ(o().lblNewsTitle->textColor(), platform::Color::redColor());
  home_->handleSwipe(platform::SwipeDirection::Left);
  home_->gestureHandlerMethod();

  home_->menu().btnMenuTapped();
  home_->menu().didSelectRowAtIndexPath(*o().tblMenu, {0, 5});  // Bookmarks
  EXPECT_EQ(home_->newsType(), "Bookmark");
  ASSERT_EQ(home_->arrNews().count(), 2u);
  EXPECT_EQ(o().lblNewsTitle->text(), "Story 2");
  EXPECT_TRUE(home_->bookmark());  // recognised: the stored id is text like the item's
  home_->handleSwipe(platform::SwipeDirection::Left);
  home_->gestureHandlerMethod();  // removed, but it stays in the list until a reload
  EXPECT_EQ(home_->arrNews().count(), 2u);

  home_->btnRefresh();  // no redraw: the old card stays with count at 0
  EXPECT_EQ(home_->count(), 0);
  EXPECT_EQ(o().lblNewsTitle->text(), "Story 3");
  EXPECT_EQ(home_->arrNews().count(), 1u);
  home_->menu().changeModeSwitch(true);
  EXPECT_EQ(o().lblNewsTitle->textColor(), platform::Color::whiteColor());
  const auto shown = toasts();
  EXPECT_EQ(shown.back(), "Refreshed");
  EXPECT_EQ(std::count(shown.begin(), shown.end(), "Bookmarked"), 2);
}

TEST_F(HomeVCTest, UnreadKeepsTheModeSoRefreshReloadsThePreviousFeed) {
  home_->mostPopularNews();
  home_->showNewsSuccess(Fixture::reply({Fixture::story("1"), Fixture::story("2")}));
  home_->menu().btnMenuTapped();
  home_->menu().didSelectRowAtIndexPath(*o().tblMenu, {0, 4});
  EXPECT_EQ(o().lblCategoryTitle->text(), "Unread");
  EXPECT_EQ(home_->newsType(), "MostPopular");
  EXPECT_EQ(home_->arrNews().count(), 2u);  // shown before it was stored: both unread
  EXPECT_FALSE(home_->menu().isMenuOpen());
  home_->btnRefresh();
  EXPECT_EQ(home_->newsType(), "MostPopular");
  EXPECT_EQ(o().lblCategoryTitle->text(), "Unread");
}

TEST_F(HomeVCTest, CategoriesExpandCollapseAndKeepTheirQuirks) {
  HomeMenu& menu = home_->menu();
  menu.btnMenuTapped();
  EXPECT_EQ(menu.arrMenuList().count(), 7u);
  menu.didSelectRowAtIndexPath(*o().tblMenu, {0, 6});  // More
  EXPECT_TRUE(menu.flag());
  EXPECT_EQ(menu.arrMenuList().count(), 6u);
  const Value categories = Value::dictionary(
      {{"result", Value::array({Value::dictionary(
                                    {{"id", Value(int64_t{4})}, {"name", Value("Sport")}, {"image", Value("Sporty")}}),
                                Value::dictionary({{"id", Value(int64_t{5})},
                                                   {"name", Value("Arts")},
                                                   {"image", Value("http://127.0.0.1:9/a.png")}})})}});
  menu.showMenuCategorySuccess(categories);
  EXPECT_EQ(menu.arrMenuList().at(8), Value("Less"));
  auto sport = std::dynamic_pointer_cast<HomeMenuTableViewCell>(o().tblMenu->cellForRowAtIndexPath({0, 6}));
  ASSERT_TRUE(sport);
  EXPECT_EQ(sport->imgNewsType->image(), "Sporty");  // no "http": an image name
  menu.didSelectRowAtIndexPath(*o().tblMenu, {0, 7});
  EXPECT_EQ(home_->categoryID(), "5");
  EXPECT_EQ(home_->newsType(), "Category");
  EXPECT_EQ(o().lblCategoryTitle->text(), "Arts");

  // A second answer appends again; row r still reads position r - 6 of the first.
  menu.btnMenuTapped();
  menu.didSelectRowAtIndexPath(*o().tblMenu, {0, 6});
  menu.showMenuCategorySuccess(categories);
  EXPECT_EQ(menu.arrCatID().count(), 4u);
  menu.didSelectRowAtIndexPath(*o().tblMenu, {0, 8});  // Less
  EXPECT_EQ(menu.arrMenuList().count(), 7u);
  EXPECT_TRUE(menu.isMenuOpen());
}

TEST_F(HomeVCTest, AnEmptyCategoryListLeadsLessDownTheFirstCategoryPath) {
  HomeMenu& menu = home_->menu();
  menu.btnMenuTapped();
  menu.didSelectRowAtIndexPath(*o().tblMenu, {0, 6});
  menu.showMenuCategorySuccess(Value::dictionary({{"result", Value::Array{}}}));
  EXPECT_EQ(menu.arrMenuList().at(6), Value("Less"));
  EXPECT_THROW(menu.didSelectRowAtIndexPath(*o().tblMenu, {0, 6}), std::out_of_range);
}

}  // namespace
}  // namespace quillet::news
