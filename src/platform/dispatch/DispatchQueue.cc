#include "platform/dispatch/DispatchQueue.h"

#include <algorithm>
#include <future>

#include "platform/log/Log.h"
#include "platform/runloop/RunLoop.h"
#include "platform/runloop/WorkerActivity.h"

namespace quillet::platform {
namespace {

constexpr const char* kMainLabel = "com.quillet.main-thread";

// The label of the serial or concurrent queue whose task runs on this
// thread, and the identity of that queue's workers.
thread_local const void* currentWorkers = nullptr;
thread_local const std::string* currentWorkersLabel = nullptr;

}  // namespace

DispatchQueue::DispatchQueue(Kind kind, std::string label, unsigned width, std::shared_ptr<RunLoop> loop)
    : kind_(kind), label_(std::move(label)), loop_(std::move(loop)) {
  if (width == 0) return;
  workers_ = std::make_shared<Workers>();
  workers_->label = label_;
  for (unsigned i = 0; i < width; ++i) threads_.emplace_back(workerLoop, workers_);
}

std::shared_ptr<DispatchQueue> DispatchQueue::makeSerial(std::string label) {
  return std::shared_ptr<DispatchQueue>(new DispatchQueue(Kind::Serial, std::move(label), 1, nullptr));
}

std::shared_ptr<DispatchQueue> DispatchQueue::makeConcurrent(std::string label, unsigned width) {
  if (width == 0) width = std::max(2u, std::thread::hardware_concurrency());
  return std::shared_ptr<DispatchQueue>(new DispatchQueue(Kind::Concurrent, std::move(label), width, nullptr));
}

std::shared_ptr<DispatchQueue> DispatchQueue::forRunLoop(std::shared_ptr<RunLoop> loop, std::string label) {
  return std::shared_ptr<DispatchQueue>(new DispatchQueue(Kind::Main, std::move(label), 0, std::move(loop)));
}

std::shared_ptr<DispatchQueue> DispatchQueue::main() {
  // Never destroyed: threads that outlive main() (the network thread) may still post to it.
  static auto* mutex = new std::mutex;
  static auto* slot = new std::shared_ptr<DispatchQueue>;
  std::shared_ptr<DispatchQueue>& queue = *slot;
  std::lock_guard lock(*mutex);
  auto loop = RunLoop::mainShared();
  // The main loop may have been replaced (tests); follow it.
  if (!queue || queue->loop_ != loop) queue = forRunLoop(loop, kMainLabel);
  return queue;
}

std::shared_ptr<DispatchQueue> DispatchQueue::global() {
  // Never destroyed, like the main queue.
  static auto* queue = new std::shared_ptr<DispatchQueue>(makeConcurrent("com.quillet.root.default-qos"));
  return *queue;
}

std::string DispatchQueue::currentLabel() {
  if (currentWorkersLabel != nullptr) return *currentWorkersLabel;
  if (RunLoop::main().isCurrent()) return kMainLabel;
  return "";
}

DispatchQueue::~DispatchQueue() {
  if (!workers_) return;
  {
    std::lock_guard lock(workers_->mutex);
    workers_->stopping = true;
  }
  workers_->ready.notify_all();
  for (auto& thread : threads_) {
    // The last reference may go inside one of this queue's own tasks.
    if (thread.get_id() == std::this_thread::get_id()) {
      thread.detach();
    } else {
      thread.join();
    }
  }
}

bool DispatchQueue::isCurrent() const {
  if (kind_ == Kind::Main) return loop_->isCurrent() && RunLoop::current() == loop_.get();
  return workers_ && currentWorkers == workers_.get();
}

void DispatchQueue::async(std::function<void()> task) {
  if (kind_ == Kind::Main) {
    loop_->post(std::move(task));
    return;
  }
  // Once the task is queued it may run and release the last reference to
  // this queue before this call returns; only the shared workers are used.
  std::shared_ptr<Workers> workers = workers_;
  WorkerActivity::shared().began();
  {
    std::lock_guard lock(workers->mutex);
    workers->tasks.push_back(std::move(task));
  }
  workers->ready.notify_one();
}

void DispatchQueue::sync(const std::function<void()>& task) {
  if (isCurrent()) {
    Log::write("DispatchQueue: sync onto the current queue \"" + label_ + "\" would wait forever; running inline");
    task();
    return;
  }
  // A worker that waits for a run loop does not hold virtual time back while
  // it waits (the loop may be the one settling the workers, or one that no
  // longer runs). The loop counts it busy again before waking it, so the
  // settling loop cannot move on between the task and the worker's return.
  const bool workerWaitsForLoop = kind_ == Kind::Main && currentWorkers != nullptr;
  if (workerWaitsForLoop) WorkerActivity::shared().ended();
  std::promise<void> done;
  async([&] {
    task();
    if (workerWaitsForLoop) WorkerActivity::shared().began();
    done.set_value();
  });
  done.get_future().wait();
}

RunLoop& DispatchQueue::timerLoop() const { return kind_ == Kind::Main ? *loop_ : RunLoop::main(); }

void DispatchQueue::after(double seconds, std::function<void()> task) {
  std::weak_ptr<DispatchQueue> weak = weak_from_this();
  timerLoop().schedule(seconds, [weak, task = std::move(task)]() mutable {
    if (auto queue = weak.lock()) queue->async(std::move(task));
  });
}

void DispatchQueue::workerLoop(std::shared_ptr<Workers> workers) {
  currentWorkers = workers.get();
  currentWorkersLabel = &workers->label;
  for (;;) {
    std::function<void()> task;
    {
      std::unique_lock lock(workers->mutex);
      workers->ready.wait(lock, [&] { return workers->stopping || !workers->tasks.empty(); });
      if (workers->tasks.empty()) return;  // stopping, and drained
      task = std::move(workers->tasks.front());
      workers->tasks.pop_front();
    }
    task();
    task = nullptr;  // what the task holds goes before the task counts as done
    WorkerActivity::shared().ended();
  }
}

}  // namespace quillet::platform
