#pragma once

#include <memory>

#include "platform/ui/IndexPath.h"

namespace quillet::platform {

class TableView;
class TableViewCell;

// Supplies a table's rows. Called on the main run loop thread during
// reloadData, scrolling and the first layout.
class TableViewDataSource {
 public:
  virtual ~TableViewDataSource() = default;
  virtual int numberOfSectionsInTableView(TableView&) { return 1; }
  virtual int numberOfRowsInSection(TableView& tableView, int section) = 0;
  // Usually dequeueReusableCellWithIdentifier, else a new cell; null leaves the row out.
  virtual std::shared_ptr<TableViewCell> cellForRowAtIndexPath(TableView& tableView, const IndexPath& indexPath) = 0;
};

}  // namespace quillet::platform
