#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quillet::platform {

class RunLoop;

// A queue of work in the manner of the phone's dispatch queues.
//   serial:     one thread of its own; tasks run one at a time in order.
//   concurrent: a few threads of its own; tasks start in order and may overlap.
//   main:       the main run loop; tasks run on its thread.
// async, sync and after may be called from any thread. Tasks handed to a
// serial or concurrent queue are counted in WorkerActivity until they have
// run, so that virtual time waits for them. A queue made by
// makeSerial/makeConcurrent drains its pending tasks and joins its threads
// when the last reference goes.
class DispatchQueue : public std::enable_shared_from_this<DispatchQueue> {
 public:
  enum class Kind { Serial, Concurrent, Main };

  static std::shared_ptr<DispatchQueue> makeSerial(std::string label);
  static std::shared_ptr<DispatchQueue> makeConcurrent(std::string label, unsigned width = 0);
  // The queue of RunLoop::main(), made on first use.
  static std::shared_ptr<DispatchQueue> main();
  // A queue over any run loop (tests give a loop with a ManualClock).
  static std::shared_ptr<DispatchQueue> forRunLoop(std::shared_ptr<RunLoop> loop, std::string label);
  // The shared concurrent queue for background work.
  static std::shared_ptr<DispatchQueue> global();
  // Label of the queue running the calling code, or "" when none.
  static std::string currentLabel();

  ~DispatchQueue();
  DispatchQueue(const DispatchQueue&) = delete;
  DispatchQueue& operator=(const DispatchQueue&) = delete;

  const std::string& label() const { return label_; }
  Kind kind() const { return kind_; }
  // True when the calling code runs on this queue.
  bool isCurrent() const;

  void async(std::function<void()> task);
  // Runs `task` on the queue and waits for it. Calling sync on a serial or
  // main queue from that same queue would wait forever; it runs the task
  // inline instead and logs the fault.
  void sync(const std::function<void()>& task);
  // Runs `task` on the queue after `seconds`, timed by the main run loop's
  // clock (so a ManualClock drives it), or by this queue's run loop for a main-kind queue.
  void after(double seconds, std::function<void()> task);
  // The run loop that times this queue's delayed work: its own loop for a
  // main-kind queue, the main run loop otherwise.
  RunLoop& timerLoop() const;

 private:
  // The pending work and threads of a serial or concurrent queue. Shared
  // with the worker threads so that it outlives a queue that is released
  // inside one of its own tasks.
  struct Workers {
    std::string label;
    std::mutex mutex;
    std::condition_variable ready;
    std::deque<std::function<void()>> tasks;
    bool stopping = false;
  };

  DispatchQueue(Kind kind, std::string label, unsigned width, std::shared_ptr<RunLoop> loop);
  static void workerLoop(std::shared_ptr<Workers> workers);

  Kind kind_;
  std::string label_;
  std::shared_ptr<RunLoop> loop_;  // Main kind only
  std::shared_ptr<Workers> workers_;
  std::vector<std::thread> threads_;
};

}  // namespace quillet::platform
