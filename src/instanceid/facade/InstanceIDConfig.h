#pragma once

#include <cstdint>
#include <memory>

#include "instanceid/facade/InstanceIDDelegate.h"

namespace quillet::instanceid {

// The facade's start-up options. A copy keeps the log level and the APNs
// switch and loses the delegate (the facade takes the delegate from the
// config it is given).
class InstanceIDConfig {
 public:
  explicit InstanceIDConfig(int8_t logLevel) : logLevel(logLevel) {}
  InstanceIDConfig(const InstanceIDConfig& other);
  InstanceIDConfig& operator=(const InstanceIDConfig& other);

  // Log level 2.
  static InstanceIDConfig defaultConfig();

  int8_t logLevel;
  // Lets a messaging scope register without an APNs token.
  bool allowMSGRegistrationWithoutAPNSToken = false;
  // Not owned.
  std::weak_ptr<InstanceIDDelegate> delegate;
};

}  // namespace quillet::instanceid
