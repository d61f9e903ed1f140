#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ui/CellWindow.h"
#include "platform/ui/IndexPath.h"
#include "platform/ui/TableViewCell.h"
#include "platform/ui/TableViewDataSource.h"
#include "platform/ui/TableViewDelegate.h"
#include "platform/ui/View.h"

namespace quillet::platform {

// A scrolling list of rows in sections. Only a window of rows is on show
// (visibleRowCount rows from the first visible one, counted across
// sections); the cells of rows that leave it go to the reuse queue with
// their state, and dequeueReusableCellWithIdentifier hands them out again.
//
// The data source and the delegate are held weakly: the screen that owns
// the table is usually both and keeps itself alive. The table loads its
// rows at its first layout (when its screen is about to appear) or at
// reloadData. Main run loop thread only.
class TableView : public View {
 public:
  using CellFactory = std::function<std::shared_ptr<TableViewCell>()>;
  explicit TableView(std::string name = "");

  void setDataSource(std::weak_ptr<TableViewDataSource> dataSource) { dataSource_ = std::move(dataSource); }
  void setDelegate(std::weak_ptr<TableViewDelegate> delegate) { delegate_ = std::move(delegate); }

  // What the storyboard's prototype cell gives: a maker for an identifier.
  void registerCellFactory(const std::string& identifier, CellFactory factory);
  // A cell that scrolled off (with its old state), else one from the
  // registered factory, else nullptr (the caller then makes one).
  std::shared_ptr<TableViewCell> dequeueReusableCellWithIdentifier(const std::string& identifier);

  // Asks the data source again for the counts and for every row on show;
  // the old cells go to the reuse queue first. Clears the selection.
  void reloadData();
  int numberOfSections() const { return static_cast<int>(rowCounts_.size()); }
  int numberOfRowsInSection(int section) const;

  int visibleRowCount() const { return visibleRowCount_; }
  void setVisibleRowCount(int count);
  // Moves the window the least distance that puts the row on show; false
  // with an OutOfRange error for a row the table does not have.
  bool scrollToRow(const IndexPath& indexPath, Error* error = nullptr);
  std::vector<IndexPath> indexPathsForVisibleRows() const;
  // The cell on show for the row, or nullptr.
  std::shared_ptr<TableViewCell> cellForRowAtIndexPath(const IndexPath& indexPath) const;
  std::optional<IndexPath> indexPathForCell(const TableViewCell& cell) const;

  // The reader taps a row: scrolls it on show, selects it, tells the delegate.
  bool performSelectRow(const IndexPath& indexPath, Error* error);
  // The program selects or deselects; the delegate hears nothing.
  void selectRowAtIndexPath(const IndexPath& indexPath) { selected_ = indexPath; }
  void deselectRowAtIndexPath(const IndexPath& indexPath, bool animated);
  const std::optional<IndexPath>& indexPathForSelectedRow() const { return selected_; }

  double rowHeight() const { return rowHeight_; }
  void setRowHeight(double height) { rowHeight_ = height; }
  // The delegate's height for the row, else rowHeight().
  double heightForRow(const IndexPath& indexPath);

  std::string kind() const override { return "table"; }

 protected:
  void layoutSubviews() override;
  // {"rowCount", "firstVisibleRow", "rows": [{"indexPath", cell state..., "selected"}]}
  void describeState(Value& into) const override;

 private:
  int totalRows() const;
  std::optional<IndexPath> indexPathAt(int flatIndex) const;
  int flatIndexOf(const IndexPath& indexPath) const;  // -1 when out of range
  void showWindow(bool reloadAll);

  std::weak_ptr<TableViewDataSource> dataSource_;
  std::weak_ptr<TableViewDelegate> delegate_;
  CellWindow cells_;
  std::vector<int> rowCounts_;
  bool loaded_ = false;
  int firstVisible_ = 0;
  int visibleRowCount_ = 10;
  std::optional<IndexPath> selected_;
  double rowHeight_ = 44;
};

}  // namespace quillet::platform
