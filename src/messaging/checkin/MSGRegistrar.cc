#include "messaging/checkin/MSGRegistrar.h"

namespace quillet::messaging {

MSGRegistrar::MSGRegistrar(std::shared_ptr<MSGCheckinStore> checkinStore, std::shared_ptr<platform::Clock> clock)
    : checkinService_(std::make_shared<MSGCheckinService>(std::move(checkinStore), std::move(clock))) {}

bool MSGRegistrar::tryToLoadValidCheckinInfo() {
  if (!checkinService_->hasValidCheckinInfo()) checkinService_->tryToLoadPrefetchedCheckinPreferences();
  return checkinService_->hasValidCheckinInfo();
}

}  // namespace quillet::messaging
