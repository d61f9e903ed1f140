#include "instanceid/registration/InstanceIDCommandHandler.h"

#include <mutex>

namespace quillet::instanceid {
namespace {

struct SharedHandler {
  std::mutex mutex;
  std::weak_ptr<InstanceIDCommandHandler> handler;
};

SharedHandler& sharedHandler() {
  // Never destroyed: session queues may ask while the process exits.
  static auto* shared = new SharedHandler();
  return *shared;
}

}  // namespace

std::shared_ptr<InstanceIDCommandHandler> InstanceIDCommandHandler::shared() {
  std::lock_guard lock(sharedHandler().mutex);
  return sharedHandler().handler.lock();
}

void InstanceIDCommandHandler::setShared(std::weak_ptr<InstanceIDCommandHandler> handler) {
  std::lock_guard lock(sharedHandler().mutex);
  sharedHandler().handler = std::move(handler);
}

}  // namespace quillet::instanceid
