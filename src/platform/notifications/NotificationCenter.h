#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/notifications/Notification.h"

namespace quillet::platform {

// A broadcast centre inside the process. Observers register a block for a
// name (or every name) and a sender (or any sender); a post calls every
// matching block synchronously on the posting thread, in the order the
// observers were added. Blocks may add and remove observers, themselves
// included, while a post is delivered: an observer removed during delivery
// is not called after its removal; one added during delivery first hears
// the next post. All operations are thread-safe; a removal from another
// thread does not wait for a block that is already running.
class NotificationCenter {
 public:
  using Block = std::function<void(const Notification&)>;
  // Identifies an observer for removeObserver; 0 is never issued.
  using ObserverToken = uint64_t;

  NotificationCenter() = default;
  NotificationCenter(const NotificationCenter&) = delete;
  NotificationCenter& operator=(const NotificationCenter&) = delete;

  // The process-wide centre.
  static NotificationCenter& defaultCenter();

  // `name` empty: every name. `object` null: any sender.
  ObserverToken addObserver(std::string name, const void* object, Block block);
  // Removing an unknown or already removed token does nothing.
  void removeObserver(ObserverToken token);

  void post(std::string name, const void* object = nullptr, Value userInfo = Value());
  void post(const Notification& notification);

 private:
  struct Observer {
    ObserverToken token;
    std::string name;
    const void* object;
    Block block;
    bool removed = false;  // guarded by mutex_
  };

  bool isRemoved(const Observer& observer) const;

  mutable std::mutex mutex_;
  std::vector<std::shared_ptr<Observer>> observers_;
  ObserverToken nextToken_ = 1;
};

}  // namespace quillet::platform
