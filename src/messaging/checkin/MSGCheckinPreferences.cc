#include "messaging/checkin/MSGCheckinPreferences.h"

#include "platform/log/Log.h"
#include "platform/value/Format.h"

namespace quillet::messaging {

using platform::textOf;

namespace {

// Part `index` of `text` split at "|", when there are exactly two parts.
std::optional<std::string> keychainContentPart(const std::string& text, size_t index) {
  const size_t bar = text.find('|');
  if (bar == std::string::npos || text.find('|', bar + 1) != std::string::npos || index > 1) return std::nullopt;
  return index == 0 ? text.substr(0, bar) : text.substr(bar + 1);
}

}  // namespace

MSGCheckinPreferences::MSGCheckinPreferences(std::string deviceID, std::string secretToken)
    : deviceID_(std::move(deviceID)), secretToken_(std::move(secretToken)) {}

bool MSGCheckinPreferences::hasValidCheckinInfo(int64_t nowMillis) const {
  if (deviceID_.empty() || secretToken_.empty()) return false;
  int64_t age = 0;
  // A difference beyond 64 bits is a timestamp far in the past (stale) or
  // far in the future (a negative age, which passes).
  if (__builtin_sub_overflow(nowMillis, lastCheckinTimestampMillis_, &age)) return lastCheckinTimestampMillis_ > 0;
  return age < kCheckinValidityMillis;
}

std::optional<std::string> MSGCheckinPreferences::checkinKeychainContent() const {
  if (deviceID_.empty() || secretToken_.empty()) return std::nullopt;
  std::string content = deviceID_;
  content.append("|").append(secretToken_);
  return content;
}

platform::Value::Dictionary MSGCheckinPreferences::checkinPlistContents() const {
  return {
      {kDigestKey, platform::Value(digest_)},
      {kVersionInfoKey, platform::Value(versionInfo_)},
      {kLastCheckinTimestampKey, platform::Value(static_cast<long long>(lastCheckinTimestampMillis_))},
      {kServicesDataKey, platform::Value(servicesData_)},
  };
}

void MSGCheckinPreferences::updateWithCheckinPlistContents(const platform::Value::Dictionary& dictionary) {
  for (const auto& [key, value] : dictionary) {
    if (key == kDigestKey) {
      digest_ = textOf(value);
    } else if (key == kVersionInfoKey) {
      versionInfo_ = textOf(value);
    } else if (key == kLastCheckinTimestampKey) {
      lastCheckinTimestampMillis_ = value.integerValue();
    } else if (key == kServicesDataKey) {
      servicesData_ = value.isDictionary() ? value.dictionaryItems() : platform::Value::Dictionary();
    } else {
      platform::Log::write(platform::format("Invalid key in checkin plist: %@", key));
    }
  }
}

void MSGCheckinPreferences::reset() { *this = MSGCheckinPreferences(); }

std::optional<std::string> MSGCheckinPreferences::checkinDeviceIDFromKeychainContent(const std::string& text) {
  return keychainContentPart(text, 0);
}

std::optional<std::string> MSGCheckinPreferences::checkinSecretFromKeychainContent(const std::string& text) {
  return keychainContentPart(text, 1);
}

std::shared_ptr<MSGCheckinPreferences> MSGCheckinPreferences::preferencesFromKeychainContents(const std::string& text) {
  const auto deviceID = checkinDeviceIDFromKeychainContent(text);
  const auto secret = checkinSecretFromKeychainContent(text);
  if (!deviceID || !secret || deviceID->empty() || secret->empty()) return nullptr;
  return std::make_shared<MSGCheckinPreferences>(*deviceID, *secret);
}

}  // namespace quillet::messaging
