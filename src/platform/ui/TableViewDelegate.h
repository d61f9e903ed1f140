#pragma once

#include "platform/ui/IndexPath.h"

namespace quillet::platform {

class TableView;
class TableViewCell;

// Hears a table's selections and display; all optional. Main run loop thread.
class TableViewDelegate {
 public:
  virtual ~TableViewDelegate() = default;
  virtual void didSelectRowAtIndexPath(TableView&, const IndexPath&) {}
  virtual void willDisplayCell(TableView&, TableViewCell&, const IndexPath&) {}
  // A negative answer means the table's rowHeight.
  virtual double heightForRowAtIndexPath(TableView&, const IndexPath&) { return -1; }
};

}  // namespace quillet::platform
