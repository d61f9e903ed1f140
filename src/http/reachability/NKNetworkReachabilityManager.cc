#include "http/reachability/NKNetworkReachabilityManager.h"

#include "platform/dispatch/DispatchQueue.h"
#include "platform/notifications/NotificationCenter.h"
#include "platform/runloop/RunLoop.h"

namespace quillet::http {

using namespace platform;

std::shared_ptr<NKNetworkReachabilityManager> NKNetworkReachabilityManager::sharedManager() {
  // Lives for the whole process: never destroyed, so exit does not depend on
  // the order in which the platform's statics go.
  static const auto* shared = new std::shared_ptr<NKNetworkReachabilityManager>(managerForAddress("0.0.0.0"));
  return *shared;
}

std::shared_ptr<NKNetworkReachabilityManager> NKNetworkReachabilityManager::managerForDomain(std::string_view domain) {
  auto source = ReachabilitySource::forHostName(domain);
  if (!source) return nullptr;
  return std::make_shared<NKNetworkReachabilityManager>(std::move(source), ForName);
}

std::shared_ptr<NKNetworkReachabilityManager> NKNetworkReachabilityManager::managerForAddress(
    std::string_view address) {
  auto source = ReachabilitySource::forAddress(address);
  if (!source) return nullptr;
  return std::make_shared<NKNetworkReachabilityManager>(std::move(source), ForAddress);
}

NKNetworkReachabilityManager::NKNetworkReachabilityManager(std::unique_ptr<ReachabilitySource> reachability,
                                                           Association association)
    : networkReachability_(std::move(reachability)), networkReachabilityAssociation_(association) {}

NKNetworkReachabilityManager::~NKNetworkReachabilityManager() { stopMonitoring(); }

NKNetworkReachabilityManager::NKNetworkReachabilityStatus NKNetworkReachabilityManager::statusForFlags(
    ReachabilityFlags flags) {
  const bool reachable = (flags & kReachabilityReachable) != 0;
  const bool needsConnection = (flags & kReachabilityConnectionRequired) != 0;
  const bool canConnectAutomatically =
      (flags & (kReachabilityConnectionOnDemand | kReachabilityConnectionOnTraffic)) != 0;
  const bool canConnectWithoutUserInteraction =
      canConnectAutomatically && (flags & kReachabilityInterventionRequired) == 0;
  if (!reachable || (needsConnection && !canConnectWithoutUserInteraction)) {
    return NKNetworkReachabilityStatusNotReachable;
  }
  if ((flags & kReachabilityIsWWAN) != 0) return NKNetworkReachabilityStatusReachableViaWWAN;
  return NKNetworkReachabilityStatusReachableViaWiFi;
}

std::string NKNetworkReachabilityManager::stringFromNetworkReachabilityStatus(NKNetworkReachabilityStatus status) {
  switch (status) {
    case NKNetworkReachabilityStatusNotReachable:
      return "Not Reachable";
    case NKNetworkReachabilityStatusReachableViaWWAN:
      return "Reachable via WWAN";
    case NKNetworkReachabilityStatusReachableViaWiFi:
      return "Reachable via WiFi";
    default:
      return "Unknown";
  }
}

void NKNetworkReachabilityManager::startMonitoring() {
  stopMonitoring();
  if (!networkReachability_) return;
  std::weak_ptr<NKNetworkReachabilityManager> weak = weak_from_this();
  auto onChange = [weak](ReachabilityFlags flags) {
    if (auto self = weak.lock()) self->deliver(flags);
  };
  networkReachability_->schedule(RunLoop::main(), onChange);
  if (networkReachabilityAssociation_ != ForName) {
    // Read once at once, off the main thread, so the status is known without waiting for a change.
    DispatchQueue::global()->async([weak] {
      auto self = weak.lock();
      if (!self) return;
      self->deliver(self->networkReachability_->flags());
    });
  }
}

void NKNetworkReachabilityManager::stopMonitoring() {
  if (networkReachability_) networkReachability_->unschedule();
}

void NKNetworkReachabilityManager::setReachabilityStatusChangeBlock(StatusBlock block) {
  std::lock_guard lock(mutex_);
  networkReachabilityStatusBlock_ = std::move(block);
}

void NKNetworkReachabilityManager::deliver(ReachabilityFlags flags) {
  const NKNetworkReachabilityStatus status = statusForFlags(flags);
  std::weak_ptr<NKNetworkReachabilityManager> weak = weak_from_this();
  DispatchQueue::main()->async([weak, status] {
    auto self = weak.lock();
    if (!self) return;
    StatusBlock block;
    {
      std::lock_guard lock(self->mutex_);
      self->networkReachabilityStatus_ = status;
      block = self->networkReachabilityStatusBlock_;
    }
    if (block) block(status);
    Value::Dictionary info;
    info.emplace(kNotificationStatusItem, Value(static_cast<int>(status)));
    NotificationCenter::defaultCenter().post(kDidChangeNotification, self.get(), Value(std::move(info)));
  });
}

NKNetworkReachabilityManager::NKNetworkReachabilityStatus NKNetworkReachabilityManager::networkReachabilityStatus()
    const {
  std::lock_guard lock(mutex_);
  return networkReachabilityStatus_;
}

bool NKNetworkReachabilityManager::isReachable() const { return isReachableViaWWAN() || isReachableViaWiFi(); }

bool NKNetworkReachabilityManager::isReachableViaWWAN() const {
  return networkReachabilityStatus() == NKNetworkReachabilityStatusReachableViaWWAN;
}

bool NKNetworkReachabilityManager::isReachableViaWiFi() const {
  return networkReachabilityStatus() == NKNetworkReachabilityStatusReachableViaWiFi;
}

std::string NKNetworkReachabilityManager::localizedNetworkReachabilityStatusString() const {
  return stringFromNetworkReachabilityStatus(networkReachabilityStatus());
}

}  // namespace quillet::http
