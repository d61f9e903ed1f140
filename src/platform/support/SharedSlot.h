#pragma once

#include <functional>
#include <memory>
#include <mutex>

namespace quillet::platform {

// The process-wide instance of a type (a "shared instance"): made by `make`
// on first use unless one was set, replaceable by set() (tests and the
// driver install their own). Never destroyed: threads that outlive main()
// may still ask for it. Thread-safe.
template <class T>
class SharedSlot {
 public:
  static std::shared_ptr<T> get(const std::function<std::shared_ptr<T>()>& make) {
    std::lock_guard lock(mutex());
    if (!slot() && make) slot() = make();
    return slot();
  }
  static void set(std::shared_ptr<T> value) {
    std::lock_guard lock(mutex());
    slot() = std::move(value);
  }

 private:
  static std::mutex& mutex() {
    static auto* m = new std::mutex;
    return *m;
  }
  static std::shared_ptr<T>& slot() {
    static auto* s = new std::shared_ptr<T>;
    return *s;
  }
};

// A value the process shares, read and replaced whole. Thread-safe.
template <class T>
class SharedValue {
 public:
  T get() const {
    std::lock_guard lock(mutex_);
    return value_;
  }
  void set(T value) {
    std::lock_guard lock(mutex_);
    value_ = std::move(value);
  }

 private:
  mutable std::mutex mutex_;
  T value_{};
};

}  // namespace quillet::platform
