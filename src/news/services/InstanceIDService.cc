#include "news/services/InstanceIDService.h"

#include "news/services/ServiceErrors.h"
#include "platform/log/Log.h"
#include "platform/support/SharedSlot.h"

namespace quillet::news {

std::shared_ptr<InstanceIDService> InstanceIDService::sharedInstance() {
  return platform::SharedSlot<InstanceIDService>::get([] { return std::make_shared<UnconfiguredInstanceIDService>(); });
}

void InstanceIDService::setSharedInstance(std::shared_ptr<InstanceIDService> instanceID) {
  platform::SharedSlot<InstanceIDService>::set(std::move(instanceID));
}

void UnconfiguredInstanceIDService::startWithConfig(const InstanceIDConfig&) {
  platform::Log::write("InstanceID: not configured; instance ID does not start");
}

void UnconfiguredInstanceIDService::tokenWithAuthorizedEntity(const std::string&, const std::string&,
                                                              const platform::Value&, TokenHandler handler) {
  platform::Log::write("InstanceID: not configured; no token");
  if (handler) handler(std::nullopt, serviceError(kInstanceIDErrorDomain, 1, "Instance ID is not configured."));
}

}  // namespace quillet::news
