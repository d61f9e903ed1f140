// Onboarding: check marks kept only on the rows' buttons, their order, Next.
#include <gtest/gtest.h>

#include "news/home/HomeTestSupport.h"
#include "news/onboarding/CategoryTableViewCell.h"
#include "news/onboarding/CategoryVC.h"

namespace quillet::news {
namespace {

using platform::Value;

class CategoryVCTest : public ::testing::Test {
 protected:
  void SetUp() override {
    screen_ = fixture_.show<CategoryVC>();
    Value::Array categories;
    for (int64_t id = 1; id <= 12; ++id) {
      categories.push_back(Value::dictionary({{"id", Value(id)},
                                              {"name", Value("Category " + std::to_string(id))},
                                              {"image", Value("http://127.0.0.1:9/c.png")}}));
    }
    screen_->showCategorySuccess(Value::dictionary({{"result", Value(std::move(categories))}}));
  }
  std::shared_ptr<CategoryTableViewCell> row(int index) {
    return std::dynamic_pointer_cast<CategoryTableViewCell>(table().cellForRowAtIndexPath({0, index}));
  }
  platform::TableView& table() { return *screen_->outlet<platform::TableView>("tableCategory"); }
  void tap(int index) { screen_->checkboxTapped(*row(index)->btnCheck); }

  testing::HomeFixture fixture_;
  std::shared_ptr<CategoryVC> screen_;
};

TEST_F(CategoryVCTest, ChecksKeepTheOrderOfSelection) {
  EXPECT_EQ(fixture_.defaults_.objectForKey("launch"), Value("true"));
  tap(6);
  tap(2);
  tap(4);
  tap(4);  // checked and unchecked again: left out
  EXPECT_EQ(screen_->arrID(), Value::array({Value(int64_t{7}), Value(int64_t{3})}));
  EXPECT_EQ(row(6)->btnCheck->imageName(), "Checked");
  EXPECT_EQ(row(4)->btnCheck->imageName(), "Unchecked");
}

TEST_F(CategoryVCTest, NextWithNothingCheckedAsksForACategory) {
  screen_->btnNext();
  fixture_.loop_->advance(5);
  EXPECT_EQ(fixture_.toasts, (std::vector<std::string>{"Please select one or more category"}));
}

TEST_F(CategoryVCTest, AReusedRowShowsAStaleMarkThatUnchecksNothing) {
  tap(0);
  ASSERT_TRUE(table().scrollToRow({0, 11}));
  // Row 7 took row 0's cell, and with it the mark.
  auto reused = row(7);
  ASSERT_TRUE(reused);
  EXPECT_EQ(reused->lblCategoryType->text(), "Category 8");
  EXPECT_EQ(reused->btnCheck->imageName(), "Checked");
  tap(7);
  EXPECT_EQ(reused->btnCheck->imageName(), "Unchecked");
  EXPECT_EQ(screen_->arrID(), Value::array({Value(int64_t{1})}));  // row 0 still counts
}

TEST_F(CategoryVCTest, AFailedOrEmptyListLeavesNothingToCheck) {
  screen_->showCategorySuccess(Value::dictionary({{"result", Value::null()}}));
  EXPECT_EQ(table().numberOfRowsInSection(0), 0);
  screen_->addUserFail(Value());
  EXPECT_EQ(fixture_.defaults_.objectForKey("UserID"), Value());
}

}  // namespace
}  // namespace quillet::news
