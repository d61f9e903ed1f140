#pragma once

#include <memory>

namespace quillet::instanceid {

// Hears the commands that the registration server hides inside a token
// ("SYNC": fetch tokens again; "RST": the identity is lost). Registration
// sits below the facade, so the facade installs itself here at start.
// Called on the main queue.
class InstanceIDCommandHandler {
 public:
  virtual ~InstanceIDCommandHandler() = default;
  virtual void notifyTokenRefresh() = 0;
  virtual void notifyIdentityLost() = 0;

  // The process-wide handler, held weakly (its owner keeps it alive); null
  // when none is installed or it is gone. Thread-safe.
  static std::shared_ptr<InstanceIDCommandHandler> shared();
  static void setShared(std::weak_ptr<InstanceIDCommandHandler> handler);
};

}  // namespace quillet::instanceid
