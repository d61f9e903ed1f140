#pragma once

#include <memory>
#include <string>

#include "messaging/checkin/MSGCheckinService.h"
#include "messaging/checkin/MSGCheckinStore.h"
#include "platform/clock/Clock.h"

namespace quillet::messaging {

// The messaging client's one door to the device credential. Main queue.
class MSGRegistrar {
 public:
  MSGRegistrar(std::shared_ptr<MSGCheckinStore> checkinStore, std::shared_ptr<platform::Clock> clock);

  std::string deviceAuthID() const { return checkinService_->deviceAuthID(); }
  std::string secretToken() const { return checkinService_->secretToken(); }
  bool hasValidCheckinInfo() const { return checkinService_->hasValidCheckinInfo(); }
  // Loads the stored credential unless a valid one is held; true when one is.
  bool tryToLoadValidCheckinInfo();

  MSGCheckinService& checkinService() { return *checkinService_; }

 private:
  std::shared_ptr<MSGCheckinService> checkinService_;
};

}  // namespace quillet::messaging
