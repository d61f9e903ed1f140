#pragma once

#include <memory>

#include "platform/ui/IndexPath.h"

namespace quillet::platform {

class CollectionView;
class CollectionViewCell;

// Supplies a collection's items (IndexPath::row is the item). Main run loop thread.
class CollectionViewDataSource {
 public:
  virtual ~CollectionViewDataSource() = default;
  virtual int numberOfSectionsInCollectionView(CollectionView&) { return 1; }
  virtual int numberOfItemsInSection(CollectionView& collectionView, int section) = 0;
  virtual std::shared_ptr<CollectionViewCell> cellForItemAtIndexPath(CollectionView& collectionView,
                                                                     const IndexPath& indexPath) = 0;
  // The delegate side, optional: an item is about to show.
  virtual void willDisplayCell(CollectionView&, CollectionViewCell&, const IndexPath&) {}
};

}  // namespace quillet::platform
