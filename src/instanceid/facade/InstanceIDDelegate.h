#pragma once

namespace quillet::instanceid {

// Told when the tokens must be fetched again (the server asked for it, or
// the identity was reset). Called on the main queue.
class InstanceIDDelegate {
 public:
  virtual ~InstanceIDDelegate() = default;
  virtual void onTokenRefresh() = 0;
};

}  // namespace quillet::instanceid
