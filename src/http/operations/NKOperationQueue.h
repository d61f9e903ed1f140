#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "http/operations/NKURLConnectionOperation.h"

namespace quillet::http {

// The queue of a request manager: it keeps each added operation alive until
// the operation finishes (also after the queue itself is gone) and calls its
// start on a background thread. Thread-safe.
class NKOperationQueue {
 public:
  NKOperationQueue();

  void addOperation(const std::shared_ptr<NKURLConnectionOperation>& operation);
  // The operations not finished yet.
  std::vector<std::shared_ptr<NKURLConnectionOperation>> operations() const;
  size_t operationCount() const;
  void cancelAllOperations();

 private:
  struct Pending {
    std::mutex mutex;
    std::vector<std::shared_ptr<NKURLConnectionOperation>> operations;
  };
  std::shared_ptr<Pending> pending_;
};

}  // namespace quillet::http
