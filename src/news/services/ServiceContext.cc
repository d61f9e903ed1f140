#include "news/services/ServiceContext.h"

#include "news/services/ServiceErrors.h"
#include "platform/log/Log.h"
#include "platform/support/SharedSlot.h"

namespace quillet::news {

std::shared_ptr<ServiceContext> ServiceContext::sharedInstance() {
  return platform::SharedSlot<ServiceContext>::get([] { return std::make_shared<UnconfiguredServiceContext>(); });
}

void ServiceContext::setSharedInstance(std::shared_ptr<ServiceContext> context) {
  platform::SharedSlot<ServiceContext>::set(std::move(context));
}

bool UnconfiguredServiceContext::configureWithError(platform::Error* error) {
  platform::Log::write("ServiceContext: no service configuration in this build; services stay unconfigured");
  if (error != nullptr) {
    *error = serviceError(kContextErrorDomain, 1, "The service configuration is not available.");
  }
  return false;
}

}  // namespace quillet::news
