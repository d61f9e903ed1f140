#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <queue>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quillet::platform {

// Handle of a timer or delayed call; 0 is never a valid handle.
using TimerId = uint64_t;

// The timers of one loop, ordered by due time and then by the order they were
// scheduled. Adding costs O(log n); cancelling by handle costs O(1) (the heap
// entry is dropped lazily), by target and operation O(k) for the k calls
// cancelled. Not thread-safe: the owner locks.
class TimerQueue {
 public:
  using Task = std::shared_ptr<std::function<void()>>;

  // A timer taken off the queue to be fired. For a repeating timer the queue
  // keeps it scheduled for its next time.
  struct Due {
    TimerId id = 0;
    double due = 0;
    Task task;
  };

  // `interval` > 0 makes a repeating timer. `target` and `operation` name a
  // delayed call for cancelByTarget().
  TimerId add(double due, double interval, std::function<void()> task, const void* target = nullptr,
              std::string operation = {});
  bool cancel(TimerId id);
  bool contains(TimerId id) const { return timers_.count(id) != 0; }
  // Cancels the calls of `target`; only those named `operation` when given.
  size_t cancelByTarget(const void* target, std::optional<std::string_view> operation);

  // Due time of the earliest live timer.
  std::optional<double> nextDue();
  // Takes the earliest timer if it is due at or before `now` and was
  // scheduled before `sequenceLimit` (see sequenceMark()).
  std::optional<Due> popDue(double now, uint64_t sequenceLimit = UINT64_MAX);
  // A mark that orders after every timer scheduled so far.
  uint64_t sequenceMark() const { return nextSequence_; }

  size_t size() const { return timers_.size(); }

 private:
  struct Timer {
    double due;
    double interval;
    uint64_t sequence;
    Task task;
    const void* target;
    std::string operation;
  };
  struct HeapEntry {
    double due;
    uint64_t sequence;
    TimerId id;
    bool operator>(const HeapEntry& other) const {
      return due != other.due ? due > other.due : sequence > other.sequence;
    }
  };

  void push(TimerId id, const Timer& timer);
  void dropStaleTop();
  void unindex(TimerId id, const Timer& timer);
  void compactIfSparse();

  std::priority_queue<HeapEntry, std::vector<HeapEntry>, std::greater<HeapEntry>> heap_;
  std::unordered_map<TimerId, Timer> timers_;
  std::unordered_map<const void*, std::unordered_map<std::string, std::unordered_set<TimerId>>> byTarget_;
  TimerId nextId_ = 1;
  uint64_t nextSequence_ = 1;
};

}  // namespace quillet::platform
