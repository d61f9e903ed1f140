#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "messaging/checkin/MSGCheckinCache.h"
#include "messaging/checkin/MSGCheckinPreferences.h"
#include "platform/clock/Clock.h"

namespace quillet::messaging {

// The credential the messaging client logs in with. It never checks in by
// itself: it adopts what device check-in stored, when that is valid. Shares
// ownership of the cache with the client. Main queue.
class MSGCheckinService {
 public:
  MSGCheckinService(std::shared_ptr<MSGCheckinCache> checkinCache, std::shared_ptr<platform::Clock> clock);

  // Reads the cache and adopts its preferences if they are valid.
  void tryToLoadPrefetchedCheckinPreferences();
  std::string deviceAuthID() const { return checkinPreferences_->deviceID(); }
  std::string secretToken() const { return checkinPreferences_->secretToken(); }
  std::string versionInfo() const { return checkinPreferences_->versionInfo(); }
  std::string digest() const { return checkinPreferences_->digest(); }
  int64_t lastCheckinTimestampMillis() const { return checkinPreferences_->lastCheckinTimestampMillis(); }
  bool hasValidCheckinInfo() const;
  // Clears the preferences and removes the stored credential.
  void reset();

  const MSGCheckinPreferences& checkinPreferences() const { return *checkinPreferences_; }

 private:
  int64_t nowMillis() const { return static_cast<int64_t>(clock_->wallSeconds() * 1000.0); }

  std::shared_ptr<MSGCheckinCache> checkinCache_;
  std::shared_ptr<platform::Clock> clock_;
  std::shared_ptr<MSGCheckinPreferences> checkinPreferences_ = std::make_shared<MSGCheckinPreferences>();
};

}  // namespace quillet::messaging
