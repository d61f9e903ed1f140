#include "platform/runloop/TimerQueue.h"

namespace quillet::platform {

TimerId TimerQueue::add(double due, double interval, std::function<void()> task, const void* target,
                        std::string operation) {
  TimerId id = nextId_++;
  Timer timer{due,
              interval,
              nextSequence_++,
              std::make_shared<std::function<void()>>(std::move(task)),
              target,
              std::move(operation)};
  if (target != nullptr) byTarget_[target][timer.operation].insert(id);
  push(id, timer);
  timers_.emplace(id, std::move(timer));
  return id;
}

bool TimerQueue::cancel(TimerId id) {
  auto it = timers_.find(id);
  if (it == timers_.end()) return false;
  unindex(id, it->second);
  timers_.erase(it);
  compactIfSparse();
  return true;
}

size_t TimerQueue::cancelByTarget(const void* target, std::optional<std::string_view> operation) {
  auto byOperation = byTarget_.find(target);
  if (byOperation == byTarget_.end()) return 0;
  std::vector<TimerId> ids;
  for (auto& [name, set] : byOperation->second) {
    if (!operation || name == *operation) ids.insert(ids.end(), set.begin(), set.end());
  }
  for (TimerId id : ids) cancel(id);
  return ids.size();
}

std::optional<double> TimerQueue::nextDue() {
  dropStaleTop();
  if (heap_.empty()) return std::nullopt;
  return heap_.top().due;
}

std::optional<TimerQueue::Due> TimerQueue::popDue(double now, uint64_t sequenceLimit) {
  dropStaleTop();
  if (heap_.empty() || heap_.top().due > now || heap_.top().sequence >= sequenceLimit) return std::nullopt;
  HeapEntry top = heap_.top();
  heap_.pop();
  auto it = timers_.find(top.id);
  Timer& timer = it->second;
  Due fired{top.id, timer.due, timer.task};
  if (timer.interval > 0) {
    // Keep to the grid of the first due time; skip the fires that were missed.
    double next = timer.due + timer.interval;
    while (next <= now) next += timer.interval;
    timer.due = next;
    timer.sequence = nextSequence_++;
    push(top.id, timer);
  } else {
    unindex(top.id, timer);
    timers_.erase(it);
  }
  return fired;
}

void TimerQueue::push(TimerId id, const Timer& timer) { heap_.push(HeapEntry{timer.due, timer.sequence, id}); }

// A heap entry is stale when its timer was cancelled or rescheduled since.
void TimerQueue::dropStaleTop() {
  while (!heap_.empty()) {
    const HeapEntry& top = heap_.top();
    auto it = timers_.find(top.id);
    if (it != timers_.end() && it->second.sequence == top.sequence) return;
    heap_.pop();
  }
}

void TimerQueue::unindex(TimerId id, const Timer& timer) {
  if (timer.target == nullptr) return;
  auto byOperation = byTarget_.find(timer.target);
  if (byOperation == byTarget_.end()) return;
  auto set = byOperation->second.find(timer.operation);
  if (set != byOperation->second.end()) {
    set->second.erase(id);
    if (set->second.empty()) byOperation->second.erase(set);
  }
  if (byOperation->second.empty()) byTarget_.erase(byOperation);
}

// Rebuilds the heap when cancelled entries outnumber live ones, so that
// memory stays proportional to the live timers.
void TimerQueue::compactIfSparse() {
  if (heap_.size() < 1024 || heap_.size() < 4 * timers_.size()) return;
  std::vector<HeapEntry> entries;
  entries.reserve(timers_.size());
  for (const auto& [id, timer] : timers_) entries.push_back(HeapEntry{timer.due, timer.sequence, id});
  heap_ = decltype(heap_)(std::greater<HeapEntry>(), std::move(entries));
}

}  // namespace quillet::platform
