#include "http/operations/NKOperationQueue.h"

#include <algorithm>

#include "platform/dispatch/DispatchQueue.h"

namespace quillet::http {

NKOperationQueue::NKOperationQueue() : pending_(std::make_shared<Pending>()) {}

void NKOperationQueue::addOperation(const std::shared_ptr<NKURLConnectionOperation>& operation) {
  {
    std::lock_guard lock(pending_->mutex);
    pending_->operations.push_back(operation);
  }
  // The observer holds the list (not the operation), so a finished operation
  // leaves it whether or not this queue still exists.
  operation->addFinishObserver([pending = pending_, raw = operation.get()] {
    std::lock_guard lock(pending->mutex);
    auto& list = pending->operations;
    list.erase(std::remove_if(list.begin(), list.end(), [raw](const auto& item) { return item.get() == raw; }),
               list.end());
  });
  platform::DispatchQueue::global()->async([operation] { operation->start(); });
}

std::vector<std::shared_ptr<NKURLConnectionOperation>> NKOperationQueue::operations() const {
  std::lock_guard lock(pending_->mutex);
  return pending_->operations;
}

size_t NKOperationQueue::operationCount() const { return operations().size(); }

void NKOperationQueue::cancelAllOperations() {
  // Cancelled outside the list's lock: a finishing operation takes it from under its own lock.
  for (const auto& operation : operations()) operation->cancel();
}

}  // namespace quillet::http
