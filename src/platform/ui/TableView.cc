#include "platform/ui/TableView.h"

#include <algorithm>

#include "platform/ui/UiError.h"

namespace quillet::platform {

TableView::TableView(std::string name) : View(std::move(name)), cells_(*this) {}

void TableView::registerCellFactory(const std::string& identifier, CellFactory factory) {
  cells_.registerFactory(identifier,
                         [factory = std::move(factory)]() -> std::shared_ptr<ReusableCell> { return factory(); });
}

std::shared_ptr<TableViewCell> TableView::dequeueReusableCellWithIdentifier(const std::string& identifier) {
  return std::dynamic_pointer_cast<TableViewCell>(cells_.dequeue(identifier));
}

int TableView::numberOfRowsInSection(int section) const {
  if (section < 0 || section >= numberOfSections()) return 0;
  return rowCounts_[static_cast<size_t>(section)];
}

int TableView::totalRows() const {
  int total = 0;
  for (int count : rowCounts_) total += count;
  return total;
}

std::optional<IndexPath> TableView::indexPathAt(int flatIndex) const {
  if (flatIndex < 0) return std::nullopt;
  for (int section = 0; section < numberOfSections(); ++section) {
    int rows = rowCounts_[static_cast<size_t>(section)];
    if (flatIndex < rows) return IndexPath{section, flatIndex};
    flatIndex -= rows;
  }
  return std::nullopt;
}

int TableView::flatIndexOf(const IndexPath& indexPath) const {
  if (indexPath.row < 0 || indexPath.row >= numberOfRowsInSection(indexPath.section)) return -1;
  int flat = indexPath.row;
  for (int section = 0; section < indexPath.section; ++section) flat += rowCounts_[static_cast<size_t>(section)];
  return flat;
}

std::vector<IndexPath> TableView::indexPathsForVisibleRows() const {
  std::vector<IndexPath> rows;
  for (const auto& [indexPath, cell] : cells_.visible()) rows.push_back(indexPath);
  return rows;
}

void TableView::showWindow(bool reloadAll) {
  std::vector<IndexPath> wanted;
  for (int i = firstVisible_; i < firstVisible_ + visibleRowCount_; ++i) {
    auto indexPath = indexPathAt(i);
    if (!indexPath) break;
    wanted.push_back(*indexPath);
  }
  auto keepAlive = weak_from_this().lock();
  auto dataSource = dataSource_.lock();
  auto made = cells_.show(wanted, reloadAll, [&](const IndexPath& indexPath) -> std::shared_ptr<ReusableCell> {
    if (!dataSource) return nullptr;
    return dataSource->cellForRowAtIndexPath(*this, indexPath);
  });
  if (auto delegate = delegate_.lock()) {
    for (const auto& indexPath : made) {
      if (auto cell = cellForRowAtIndexPath(indexPath)) delegate->willDisplayCell(*this, *cell, indexPath);
    }
  }
}

void TableView::reloadData() {
  loaded_ = true;
  selected_.reset();
  rowCounts_.clear();
  if (auto dataSource = dataSource_.lock()) {
    int sections = std::max(0, dataSource->numberOfSectionsInTableView(*this));
    for (int section = 0; section < sections; ++section) {
      rowCounts_.push_back(std::max(0, dataSource->numberOfRowsInSection(*this, section)));
    }
  }
  firstVisible_ = std::clamp(firstVisible_, 0, std::max(0, totalRows() - visibleRowCount_));
  showWindow(true);
}

void TableView::layoutSubviews() {
  if (!loaded_) reloadData();
}

void TableView::setVisibleRowCount(int count) {
  visibleRowCount_ = std::max(1, count);
  if (loaded_) showWindow(false);
}

bool TableView::scrollToRow(const IndexPath& indexPath, Error* error) {
  int flat = flatIndexOf(indexPath);
  if (flat < 0) {
    return uiError(error, UiErrorCode::OutOfRange, "'" + name() + "' has no row " + indexPath.text());
  }
  if (flat < firstVisible_) {
    firstVisible_ = flat;
  } else if (flat >= firstVisible_ + visibleRowCount_) {
    firstVisible_ = flat - visibleRowCount_ + 1;
  }
  showWindow(false);
  return true;
}

std::shared_ptr<TableViewCell> TableView::cellForRowAtIndexPath(const IndexPath& indexPath) const {
  return std::dynamic_pointer_cast<TableViewCell>(cells_.cellAt(indexPath));
}

std::optional<IndexPath> TableView::indexPathForCell(const TableViewCell& cell) const {
  for (const auto& [indexPath, shown] : cells_.visible()) {
    if (shown.get() == &cell) return indexPath;
  }
  return std::nullopt;
}

bool TableView::performSelectRow(const IndexPath& indexPath, Error* error) {
  if (!checkInteractive(error)) return false;
  if (!scrollToRow(indexPath, error)) return false;
  selected_ = indexPath;
  auto keepAlive = weak_from_this().lock();
  if (auto delegate = delegate_.lock()) delegate->didSelectRowAtIndexPath(*this, indexPath);
  return true;
}

void TableView::deselectRowAtIndexPath(const IndexPath& indexPath, bool) {
  if (selected_ == indexPath) selected_.reset();
}

double TableView::heightForRow(const IndexPath& indexPath) {
  if (auto delegate = delegate_.lock()) {
    double height = delegate->heightForRowAtIndexPath(*this, indexPath);
    if (height >= 0) return height;
  }
  return rowHeight_;
}

void TableView::describeState(Value& into) const {
  into.set("rowCount", Value(totalRows()));
  into.set("firstVisibleRow", Value(firstVisible_));
  Value rows = Value::array({});
  for (const auto& [indexPath, cell] : cells_.visible()) {
    Value row = cell->describe();
    row.set("indexPath", Value(indexPath.text()));
    if (selected_ == indexPath) row.set("selected", Value(true));
    rows.append(std::move(row));
  }
  into.set("rows", std::move(rows));
}

}  // namespace quillet::platform
