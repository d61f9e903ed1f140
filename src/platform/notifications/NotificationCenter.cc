#include "platform/notifications/NotificationCenter.h"

#include <algorithm>

namespace quillet::platform {

NotificationCenter& NotificationCenter::defaultCenter() {
  static auto* center = new NotificationCenter();  // never destroyed: threads that outlive main() may post
  return *center;
}

NotificationCenter::ObserverToken NotificationCenter::addObserver(std::string name, const void* object, Block block) {
  std::lock_guard lock(mutex_);
  ObserverToken token = nextToken_++;
  observers_.push_back(std::make_shared<Observer>(Observer{token, std::move(name), object, std::move(block)}));
  return token;
}

void NotificationCenter::removeObserver(ObserverToken token) {
  std::lock_guard lock(mutex_);
  auto it = std::find_if(observers_.begin(), observers_.end(),
                         [token](const auto& observer) { return observer->token == token; });
  if (it == observers_.end()) return;
  (*it)->removed = true;
  observers_.erase(it);
}

bool NotificationCenter::isRemoved(const Observer& observer) const {
  std::lock_guard lock(mutex_);
  return observer.removed;
}

void NotificationCenter::post(std::string name, const void* object, Value userInfo) {
  post(Notification{std::move(name), object, std::move(userInfo)});
}

void NotificationCenter::post(const Notification& notification) {
  // Deliver to a snapshot taken outside the blocks, so that blocks may change
  // the observer list; the shared pointers keep each block alive while it runs.
  std::vector<std::shared_ptr<Observer>> matching;
  {
    std::lock_guard lock(mutex_);
    for (const auto& observer : observers_)
      if ((observer->name.empty() || observer->name == notification.name) &&
          (observer->object == nullptr || observer->object == notification.object))
        matching.push_back(observer);
  }
  for (const auto& observer : matching)
    if (!isRemoved(*observer)) observer->block(notification);
}

}  // namespace quillet::platform
