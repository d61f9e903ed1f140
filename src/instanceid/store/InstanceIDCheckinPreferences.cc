#include "instanceid/store/InstanceIDCheckinPreferences.h"

#include "instanceid/support/InstanceIDLogger.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {

using platform::textOf;

InstanceIDCheckinPreferences::InstanceIDCheckinPreferences(std::string deviceID, std::string secretToken)
    : deviceID_(std::move(deviceID)), secretToken_(std::move(secretToken)) {}

bool InstanceIDCheckinPreferences::hasValidCheckinInfo(int64_t nowMillis) const {
  if (deviceID_.empty() || secretToken_.empty()) return false;
  int64_t age = 0;
  // A difference beyond 64 bits is a timestamp far in the past (stale) or
  // far in the future (a negative age, which passes).
  if (__builtin_sub_overflow(nowMillis, lastCheckinTimestampMillis_, &age)) return lastCheckinTimestampMillis_ > 0;
  return age < kCheckinValidityMillis;
}

platform::Value::Dictionary InstanceIDCheckinPreferences::checkinPlistContents() const {
  return {
      {kDigestKey, platform::Value(digest_)},
      {kVersionInfoKey, platform::Value(versionInfo_)},
      {kDeviceDataVersionKey, platform::Value(deviceDataVersion_)},
      {kLastCheckinTimestampKey, platform::Value(static_cast<long long>(lastCheckinTimestampMillis_))},
      {kServicesDataKey, platform::Value(servicesData_)},
  };
}

std::optional<std::string> InstanceIDCheckinPreferences::checkinKeychainContent() const {
  if (deviceID_.empty() || secretToken_.empty()) return std::nullopt;
  std::string content = deviceID_;
  content.append("|").append(secretToken_);
  return content;
}

void InstanceIDCheckinPreferences::updateWithCheckinPlistContents(const platform::Value::Dictionary& dictionary) {
  for (const auto& [key, value] : dictionary) {
    if (key == kDigestKey) {
      digest_ = textOf(value);
    } else if (key == kVersionInfoKey) {
      versionInfo_ = textOf(value);
    } else if (key == kDeviceDataVersionKey) {
      deviceDataVersion_ = textOf(value);
    } else if (key == kLastCheckinTimestampKey) {
      lastCheckinTimestampMillis_ = value.integerValue();
    } else if (key == kServicesDataKey) {
      servicesData_ = value.isDictionary() ? value.dictionaryItems() : platform::Value::Dictionary();
    } else {
      iidLogDebug(platform::format("Invalid key in checkin plist: %@", key));
    }
  }
}

void InstanceIDCheckinPreferences::reset() { *this = InstanceIDCheckinPreferences(); }

std::optional<std::string> InstanceIDCheckinPreferences::checkinKeychainContent(const std::string& text, size_t index) {
  const size_t bar = text.find('|');
  if (bar == std::string::npos || text.find('|', bar + 1) != std::string::npos || index > 1) return std::nullopt;
  return index == 0 ? text.substr(0, bar) : text.substr(bar + 1);
}

std::optional<std::string> InstanceIDCheckinPreferences::checkinDeviceIDFromKeychainContent(const std::string& text) {
  return checkinKeychainContent(text, 0);
}

std::optional<std::string> InstanceIDCheckinPreferences::checkinSecretFromKeychainContent(const std::string& text) {
  return checkinKeychainContent(text, 1);
}

std::shared_ptr<InstanceIDCheckinPreferences> InstanceIDCheckinPreferences::preferencesFromKeychainContents(
    const std::string& text) {
  const auto deviceID = checkinDeviceIDFromKeychainContent(text);
  const auto secret = checkinSecretFromKeychainContent(text);
  if (!deviceID || !secret || deviceID->empty() || secret->empty()) return nullptr;
  return std::make_shared<InstanceIDCheckinPreferences>(*deviceID, *secret);
}

}  // namespace quillet::instanceid
