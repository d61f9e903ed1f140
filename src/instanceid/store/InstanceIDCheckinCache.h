#pragma once

#include <memory>

#include "instanceid/store/InstanceIDCheckinPreferences.h"
#include "platform/value/Error.h"

namespace quillet::instanceid {

// Where the check-in service keeps the credential between runs
// (InstanceIDStore plays this role). Called on the check-in service's queue.
class InstanceIDCheckinCache {
 public:
  virtual ~InstanceIDCheckinCache() = default;
  // Writes keychain item and plist together, or neither.
  virtual bool saveCheckinPreferences(const InstanceIDCheckinPreferences& preferences, platform::Error* error) = 0;
  // The stored credential with its plist fields, or null.
  virtual std::shared_ptr<InstanceIDCheckinPreferences> cachedCheckinPreferences() = 0;
  virtual bool removeCheckinPreferences(platform::Error* error) = 0;
};

}  // namespace quillet::instanceid
