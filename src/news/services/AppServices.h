#pragma once

#include <memory>

#include "news/services/InstanceIDService.h"
#include "news/services/MSGPubSub.h"
#include "news/services/MSGService.h"
#include "news/services/ServiceContext.h"

namespace quillet::news {

// The services the shell calls, handed to it whole so tests can pass doubles.
struct AppServices {
  std::shared_ptr<ServiceContext> context;
  std::shared_ptr<MSGService> msgService;
  std::shared_ptr<MSGPubSub> pubSub;
  std::shared_ptr<InstanceIDService> instanceID;

  // The process-wide instances.
  static AppServices shared() {
    return {ServiceContext::sharedInstance(), MSGService::sharedInstance(), MSGPubSub::sharedInstance(),
            InstanceIDService::sharedInstance()};
  }
};

}  // namespace quillet::news
