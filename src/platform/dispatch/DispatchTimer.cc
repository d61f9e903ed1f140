#include "platform/dispatch/DispatchTimer.h"

#include <mutex>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/runloop/RunLoop.h"

namespace quillet::platform {

// What the timer and its pending fire share. `generation` names the current
// schedule; a fire of an older generation (cancelled or replaced) does nothing.
struct DispatchTimer::State {
  std::mutex mutex;
  uint64_t generation = 0;
  bool pending = false;
  TimerId loopTimer = 0;
  std::function<void()> handler;
};

DispatchTimer::DispatchTimer(std::shared_ptr<DispatchQueue> queue)
    : queue_(std::move(queue)), state_(std::make_shared<State>()) {}

DispatchTimer::~DispatchTimer() { cancel(); }

void DispatchTimer::schedule(double seconds, std::function<void()> handler) {
  RunLoop& loop = queue_->timerLoop();
  std::lock_guard lock(state_->mutex);
  if (state_->pending) loop.cancel(state_->loopTimer);
  const uint64_t generation = ++state_->generation;
  state_->pending = true;
  state_->handler = std::move(handler);
  std::weak_ptr<State> weak = state_;
  state_->loopTimer = loop.schedule(seconds, [weak, generation, queue = queue_] {
    queue->async([weak, generation] {
      auto state = weak.lock();
      if (!state) return;
      std::function<void()> handler;
      {
        std::lock_guard lock(state->mutex);
        if (!state->pending || state->generation != generation) return;
        state->pending = false;
        handler = std::move(state->handler);
      }
      handler();
    });
  });
}

void DispatchTimer::cancel() {
  std::lock_guard lock(state_->mutex);
  if (!state_->pending) return;
  queue_->timerLoop().cancel(state_->loopTimer);
  state_->pending = false;
  ++state_->generation;
  state_->handler = nullptr;
}

bool DispatchTimer::isPending() const {
  std::lock_guard lock(state_->mutex);
  return state_->pending;
}

}  // namespace quillet::platform
