#include "news/services/InstanceID.h"

#include "news/services/ServiceErrors.h"
#include "platform/log/Log.h"
#include "platform/support/SharedSlot.h"

namespace quillet::news {

std::shared_ptr<InstanceID> InstanceID::sharedInstance() {
  return platform::SharedSlot<InstanceID>::get([] { return std::make_shared<UnconfiguredInstanceID>(); });
}

void InstanceID::setSharedInstance(std::shared_ptr<InstanceID> instanceID) {
  platform::SharedSlot<InstanceID>::set(std::move(instanceID));
}

void UnconfiguredInstanceID::startWithConfig(const InstanceIDConfig&) {
  platform::Log::write("InstanceID: not configured; instance ID does not start");
}

void UnconfiguredInstanceID::tokenWithAuthorizedEntity(const std::string&, const std::string&, const platform::Value&,
                                                       TokenHandler handler) {
  platform::Log::write("InstanceID: not configured; no token");
  if (handler) handler(std::nullopt, serviceError(kInstanceIDErrorDomain, 1, "Instance ID is not configured."));
}

}  // namespace quillet::news
