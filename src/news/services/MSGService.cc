#include "news/services/MSGService.h"

#include "news/services/ServiceErrors.h"
#include "platform/log/Log.h"
#include "platform/support/SharedSlot.h"

namespace quillet::news {

std::shared_ptr<MSGService> MSGService::sharedInstance() {
  return platform::SharedSlot<MSGService>::get([] { return std::make_shared<UnconfiguredMSGService>(); });
}

void MSGService::setSharedInstance(std::shared_ptr<MSGService> service) {
  platform::SharedSlot<MSGService>::set(std::move(service));
}

void UnconfiguredMSGService::startWithConfig(const MSGConfig&) {
  platform::Log::write("MSGService: not configured; messaging does not start");
}

void UnconfiguredMSGService::connectWithHandler(ErrorHandler handler) {
  platform::Log::write("MSGService: not configured; cannot connect");
  if (handler) handler(serviceError(kMSGErrorDomain, 2001, "Messaging is not configured."));
}

void UnconfiguredMSGService::appDidReceiveMessage(const platform::Value&) {
  platform::Log::write("MSGService: not configured; message not handled");
}

}  // namespace quillet::news
