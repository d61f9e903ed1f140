#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/ui/CellWindow.h"
#include "platform/ui/CollectionViewCell.h"
#include "platform/ui/CollectionViewDataSource.h"
#include "platform/ui/View.h"

namespace quillet::platform {

// A minimal collection view: items in sections, the first visibleItemCount
// of them on show, cells reused by identifier. The data source is held
// weakly (the owning screen keeps it alive). Loads at its first layout or
// at reloadData. Main run loop thread only.
class CollectionView : public View {
 public:
  using CellFactory = std::function<std::shared_ptr<CollectionViewCell>()>;
  explicit CollectionView(std::string name = "");

  void setDataSource(std::weak_ptr<CollectionViewDataSource> dataSource) { dataSource_ = std::move(dataSource); }
  void registerCellFactory(const std::string& identifier, CellFactory factory);
  std::shared_ptr<CollectionViewCell> dequeueReusableCellWithReuseIdentifier(const std::string& identifier);

  void reloadData();
  int numberOfItems() const { return itemCount_; }
  int visibleItemCount() const { return visibleItemCount_; }
  void setVisibleItemCount(int count) { visibleItemCount_ = count < 1 ? 1 : count; }
  std::shared_ptr<CollectionViewCell> cellForItemAtIndexPath(const IndexPath& indexPath) const;

  std::string kind() const override { return "collection"; }

 protected:
  void layoutSubviews() override;
  void describeState(Value& into) const override;

 private:
  std::weak_ptr<CollectionViewDataSource> dataSource_;
  CellWindow cells_;
  bool loaded_ = false;
  int itemCount_ = 0;
  int visibleItemCount_ = 4;
};

}  // namespace quillet::platform
