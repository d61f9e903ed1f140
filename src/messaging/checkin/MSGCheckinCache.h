#pragma once

#include <memory>

#include "messaging/checkin/MSGCheckinPreferences.h"
#include "platform/value/Error.h"

namespace quillet::messaging {

// Where the messaging client finds the device credential (MSGCheckinStore). Main queue.
class MSGCheckinCache {
 public:
  virtual ~MSGCheckinCache() = default;
  // The stored credential with its plist fields, or null.
  virtual std::shared_ptr<MSGCheckinPreferences> cachedCheckinPreferences() = 0;
  // Removes keychain item and plist; a missing item is no failure.
  virtual bool removeCheckinPreferences(platform::Error* error) = 0;
};

}  // namespace quillet::messaging
