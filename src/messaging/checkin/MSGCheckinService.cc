#include "messaging/checkin/MSGCheckinService.h"

namespace quillet::messaging {

MSGCheckinService::MSGCheckinService(std::shared_ptr<MSGCheckinCache> checkinCache,
                                     std::shared_ptr<platform::Clock> clock)
    : checkinCache_(std::move(checkinCache)), clock_(std::move(clock)) {}

void MSGCheckinService::tryToLoadPrefetchedCheckinPreferences() {
  auto preferences = checkinCache_->cachedCheckinPreferences();
  if (preferences && preferences->hasValidCheckinInfo(nowMillis())) checkinPreferences_ = std::move(preferences);
}

bool MSGCheckinService::hasValidCheckinInfo() const { return checkinPreferences_->hasValidCheckinInfo(nowMillis()); }

void MSGCheckinService::reset() {
  checkinPreferences_->reset();
  checkinCache_->removeCheckinPreferences(nullptr);
}

}  // namespace quillet::messaging
