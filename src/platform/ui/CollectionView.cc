#include "platform/ui/CollectionView.h"

namespace quillet::platform {

CollectionView::CollectionView(std::string name) : View(std::move(name)), cells_(*this) {}

void CollectionView::registerCellFactory(const std::string& identifier, CellFactory factory) {
  cells_.registerFactory(identifier,
                         [factory = std::move(factory)]() -> std::shared_ptr<ReusableCell> { return factory(); });
}

std::shared_ptr<CollectionViewCell> CollectionView::dequeueReusableCellWithReuseIdentifier(
    const std::string& identifier) {
  return std::dynamic_pointer_cast<CollectionViewCell>(cells_.dequeue(identifier));
}

void CollectionView::reloadData() {
  loaded_ = true;
  itemCount_ = 0;
  auto keepAlive = weak_from_this().lock();
  auto dataSource = dataSource_.lock();
  std::vector<IndexPath> wanted;
  if (dataSource) {
    int sections = dataSource->numberOfSectionsInCollectionView(*this);
    for (int section = 0; section < sections; ++section) {
      int items = dataSource->numberOfItemsInSection(*this, section);
      for (int item = 0; item < items; ++item) {
        if (static_cast<int>(wanted.size()) < visibleItemCount_) wanted.push_back(IndexPath{section, item});
      }
      itemCount_ += items > 0 ? items : 0;
    }
  }
  auto made = cells_.show(wanted, true, [&](const IndexPath& indexPath) -> std::shared_ptr<ReusableCell> {
    return dataSource ? dataSource->cellForItemAtIndexPath(*this, indexPath) : nullptr;
  });
  for (const auto& indexPath : made) {
    if (auto cell = cellForItemAtIndexPath(indexPath)) dataSource->willDisplayCell(*this, *cell, indexPath);
  }
}

void CollectionView::layoutSubviews() {
  if (!loaded_) reloadData();
}

std::shared_ptr<CollectionViewCell> CollectionView::cellForItemAtIndexPath(const IndexPath& indexPath) const {
  return std::dynamic_pointer_cast<CollectionViewCell>(cells_.cellAt(indexPath));
}

void CollectionView::describeState(Value& into) const {
  into.set("itemCount", Value(itemCount_));
  Value items = Value::array({});
  for (const auto& [indexPath, cell] : cells_.visible()) {
    Value item = cell->describe();
    item.set("indexPath", Value(indexPath.text()));
    items.append(std::move(item));
  }
  into.set("items", std::move(items));
}

}  // namespace quillet::platform
