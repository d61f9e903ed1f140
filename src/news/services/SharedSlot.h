#pragma once

#include <functional>
#include <memory>
#include <mutex>

namespace quillet::news {

// The process-wide instance of a service interface: made by `make` on first
// use unless one was set. Thread-safe.
template <class T>
class SharedSlot {
 public:
  static std::shared_ptr<T> get(const std::function<std::shared_ptr<T>()>& make) {
    std::lock_guard lock(mutex());
    if (!slot()) slot() = make();
    return slot();
  }
  static void set(std::shared_ptr<T> value) {
    std::lock_guard lock(mutex());
    slot() = std::move(value);
  }

 private:
  static std::mutex& mutex() {
    static std::mutex m;
    return m;
  }
  static std::shared_ptr<T>& slot() {
    static std::shared_ptr<T> s;
    return s;
  }
};

}  // namespace quillet::news
