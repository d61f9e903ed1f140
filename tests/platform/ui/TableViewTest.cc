#include <gtest/gtest.h>

#include <set>

#include "platform/ui/Button.h"
#include "platform/ui/TableView.h"
#include "platform/ui/UiError.h"

namespace quillet::platform {
namespace {

// A list of categories with check marks that, like a screen that only sets
// the mark for chosen rows, never clears a reused cell's mark.
class Categories : public TableViewDataSource, public TableViewDelegate {
 public:
  std::vector<std::string> names;
  std::set<int> chosen;
  std::vector<IndexPath> selected;
  int made = 0;

  int numberOfRowsInSection(TableView&, int) override { return static_cast<int>(names.size()); }
  std::shared_ptr<TableViewCell> cellForRowAtIndexPath(TableView& table, const IndexPath& indexPath) override {
    auto cell = table.dequeueReusableCellWithIdentifier("CategoryTableViewCell");
    if (!cell) {
      ++made;
      cell = std::make_shared<TableViewCell>("CategoryTableViewCell");
      cell->addSubview(std::make_shared<Button>("btnCheck"));
    }
    cell->textLabel()->setText(names[static_cast<size_t>(indexPath.row)]);
    if (chosen.count(indexPath.row)) cell->setAccessoryType(CellAccessoryType::Checkmark);
    return cell;
  }
  void didSelectRowAtIndexPath(TableView&, const IndexPath& indexPath) override { selected.push_back(indexPath); }
};

std::shared_ptr<Categories> twenty() {
  auto categories = std::make_shared<Categories>();
  for (int i = 0; i < 20; ++i) categories->names.push_back("Category " + std::to_string(i));
  return categories;
}

TEST(TableViewTest, ScrolledOffCellsComeBackWithTheirStaleState) {
  auto categories = twenty();
  categories->chosen = {0};
  auto table = std::make_shared<TableView>("tableCategory");
  table->setVisibleRowCount(5);
  table->setDataSource(categories);
  table->layoutIfNeeded();  // the first layout loads
  EXPECT_EQ(categories->made, 5);
  EXPECT_EQ(table->indexPathsForVisibleRows().front(), IndexPath::forRow(0));

  auto first = table->cellForRowAtIndexPath(IndexPath::forRow(0));
  ASSERT_TRUE(table->scrollToRow(IndexPath::forRow(5)));  // row 0 leaves, row 5 enters
  EXPECT_EQ(categories->made, 5);
  auto reused = table->cellForRowAtIndexPath(IndexPath::forRow(5));
  EXPECT_EQ(reused, first);
  EXPECT_EQ(reused->textLabel()->text(), "Category 5");
  EXPECT_EQ(reused->accessoryType(), CellAccessoryType::Checkmark);  // row 5 was never chosen
  EXPECT_EQ(table->cellForRowAtIndexPath(IndexPath::forRow(0)), nullptr);

  Value rows = table->describe()["rows"];
  ASSERT_EQ(rows.count(), 5u);
  EXPECT_EQ(rows.at(4)["indexPath"].string(), "0.5");
  EXPECT_EQ(rows.at(4)["accessory"].string(), "checkmark");
  EXPECT_EQ(rows.at(4)["views"]["btnCheck"]["kind"].string(), "button");

  categories->names.resize(2);
  table->reloadData();  // a shorter list: the window moves back and keeps the cells for reuse
  EXPECT_EQ(table->indexPathsForVisibleRows().size(), 2u);
  EXPECT_EQ(categories->made, 5);
}

TEST(TableViewTest, SelectingARowScrollsToItAndTellsTheDelegate) {
  auto categories = twenty();
  auto table = std::make_shared<TableView>("tableCategory");
  table->setVisibleRowCount(4);
  table->setDataSource(categories);
  table->setDelegate(categories);
  table->reloadData();

  ASSERT_TRUE(table->performSelectRow(IndexPath::forRow(12), nullptr));
  EXPECT_EQ(categories->selected, (std::vector<IndexPath>{IndexPath::forRow(12)}));
  EXPECT_EQ(table->indexPathsForVisibleRows().back(), IndexPath::forRow(12));
  EXPECT_EQ(table->indexPathForSelectedRow(), IndexPath::forRow(12));

  Error error;
  EXPECT_FALSE(table->performSelectRow(IndexPath::forRow(20), &error));
  EXPECT_EQ(error.code, static_cast<int64_t>(UiErrorCode::OutOfRange));
  EXPECT_FALSE(table->performSelectRow(IndexPath{1, 0}, &error));
  EXPECT_EQ(categories->selected.size(), 1u);

  table->setHidden(true);
  EXPECT_FALSE(table->performSelectRow(IndexPath::forRow(1), &error));
  EXPECT_EQ(error.code, static_cast<int64_t>(UiErrorCode::NotInteractive));
}

}  // namespace
}  // namespace quillet::platform
