#include "instanceid/facade/InstanceIDConfig.h"

namespace quillet::instanceid {

InstanceIDConfig::InstanceIDConfig(const InstanceIDConfig& other)
    : logLevel(other.logLevel), allowMSGRegistrationWithoutAPNSToken(other.allowMSGRegistrationWithoutAPNSToken) {}

InstanceIDConfig& InstanceIDConfig::operator=(const InstanceIDConfig& other) {
  logLevel = other.logLevel;
  allowMSGRegistrationWithoutAPNSToken = other.allowMSGRegistrationWithoutAPNSToken;
  delegate.reset();
  return *this;
}

InstanceIDConfig InstanceIDConfig::defaultConfig() { return InstanceIDConfig(2); }

}  // namespace quillet::instanceid
