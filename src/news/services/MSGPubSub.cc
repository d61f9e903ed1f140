#include "news/services/MSGPubSub.h"

#include "news/services/ServiceErrors.h"
#include "platform/log/Log.h"
#include "platform/support/SharedSlot.h"

namespace quillet::news {

std::shared_ptr<MSGPubSub> MSGPubSub::sharedInstance() {
  return platform::SharedSlot<MSGPubSub>::get([] { return std::make_shared<UnconfiguredMSGPubSub>(); });
}

void MSGPubSub::setSharedInstance(std::shared_ptr<MSGPubSub> pubSub) {
  platform::SharedSlot<MSGPubSub>::set(std::move(pubSub));
}

void UnconfiguredMSGPubSub::subscribeWithToken(const std::string&, const std::string& topic, const platform::Value&,
                                               ErrorHandler handler) {
  platform::Log::write("MSGPubSub: not configured; cannot subscribe to " + topic);
  if (handler) handler(serviceError(kMSGErrorDomain, 2001, "Messaging is not configured."));
}

}  // namespace quillet::news
