#include "platform/ui/CellWindow.h"

#include <algorithm>

#include "platform/log/Log.h"

namespace quillet::platform {

void CellWindow::registerFactory(const std::string& identifier, Factory factory) {
  factories_[identifier] = std::move(factory);
}

std::shared_ptr<ReusableCell> CellWindow::dequeue(const std::string& identifier) {
  auto queue = queues_.find(identifier);
  if (queue != queues_.end() && !queue->second.empty()) {
    auto cell = std::move(queue->second.front());
    queue->second.pop_front();
    cell->prepareForReuse();
    return cell;
  }
  auto factory = factories_.find(identifier);
  if (factory == factories_.end()) return nullptr;
  return factory->second();
}

void CellWindow::retire(std::shared_ptr<ReusableCell> cell) {
  cell->removeFromSuperview();
  queues_[cell->reuseIdentifier()].push_back(std::move(cell));
}

std::vector<IndexPath> CellWindow::show(const std::vector<IndexPath>& wanted, bool reloadAll, const MakeCell& make) {
  for (auto it = visible_.begin(); it != visible_.end();) {
    bool keep = !reloadAll && std::find(wanted.begin(), wanted.end(), it->first) != wanted.end();
    if (keep) {
      ++it;
    } else {
      retire(std::move(it->second));
      it = visible_.erase(it);
    }
  }
  std::vector<IndexPath> made;
  for (const auto& indexPath : wanted) {
    if (visible_.count(indexPath)) continue;
    auto cell = make(indexPath);
    if (!cell) {
      Log::write("A cell view gave no cell for row " + indexPath.text());
      continue;
    }
    host_.addSubview(cell);
    visible_[indexPath] = std::move(cell);
    made.push_back(indexPath);
  }
  return made;
}

std::shared_ptr<ReusableCell> CellWindow::cellAt(const IndexPath& indexPath) const {
  auto it = visible_.find(indexPath);
  return it == visible_.end() ? nullptr : it->second;
}

size_t CellWindow::queuedCount(const std::string& identifier) const {
  auto it = queues_.find(identifier);
  return it == queues_.end() ? 0 : it->second.size();
}

}  // namespace quillet::platform
