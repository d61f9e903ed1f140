#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/ui/IndexPath.h"
#include "platform/ui/ReusableCell.h"

namespace quillet::platform {

// The cell bookkeeping that table and collection views share: the cells on
// show by index path (subviews of the host view) and the reuse queues by
// identifier, with the factories registered for each identifier. Main run
// loop thread only.
class CellWindow {
 public:
  using Factory = std::function<std::shared_ptr<ReusableCell>()>;
  using MakeCell = std::function<std::shared_ptr<ReusableCell>(const IndexPath&)>;

  explicit CellWindow(View& host) : host_(host) {}

  void registerFactory(const std::string& identifier, Factory factory);
  // A cell that left the window with that identifier (oldest first, after
  // its prepareForReuse), else a new cell from the registered factory, else nullptr.
  std::shared_ptr<ReusableCell> dequeue(const std::string& identifier);

  // Shows exactly the cells of `wanted`: cells outside it (all of them when
  // `reloadAll`) go to the reuse queues first, then `make` is asked for each
  // wanted index path without a cell, in order. A null cell is left out.
  // Returns the index paths whose cells were made anew.
  std::vector<IndexPath> show(const std::vector<IndexPath>& wanted, bool reloadAll, const MakeCell& make);

  const std::map<IndexPath, std::shared_ptr<ReusableCell>>& visible() const { return visible_; }
  std::shared_ptr<ReusableCell> cellAt(const IndexPath& indexPath) const;
  size_t queuedCount(const std::string& identifier) const;

 private:
  void retire(std::shared_ptr<ReusableCell> cell);

  View& host_;
  std::map<IndexPath, std::shared_ptr<ReusableCell>> visible_;
  std::map<std::string, std::deque<std::shared_ptr<ReusableCell>>> queues_;
  std::map<std::string, Factory> factories_;
};

}  // namespace quillet::platform
