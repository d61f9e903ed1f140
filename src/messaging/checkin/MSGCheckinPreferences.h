#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/value/Value.h"

namespace quillet::messaging {

// The device credential as the messaging client reads it from the records
// that device check-in writes: "<deviceID>|<secretToken>" in the keychain,
// the rest in "g-checkin.plist". Empty strings stand for absent ones. A
// plain value, used on the main queue.
class MSGCheckinPreferences {
 public:
  static constexpr const char* kDeviceAuthIdKey = "IIDDeviceAuthIdKey";
  static constexpr const char* kSecretTokenKey = "IIDSecretTokenKey";
  static constexpr const char* kDigestKey = "IIDDigestKey";
  static constexpr const char* kVersionInfoKey = "IIDVersionInfo";
  static constexpr const char* kLastCheckinTimestampKey = "IIDLastCheckinTimestampKey";
  static constexpr const char* kServicesDataKey = "IIDServicesData";
  static constexpr int64_t kCheckinValidityMillis = 86400000;

  MSGCheckinPreferences() = default;
  MSGCheckinPreferences(std::string deviceID, std::string secretToken);

  const std::string& deviceID() const { return deviceID_; }
  const std::string& secretToken() const { return secretToken_; }
  const std::string& digest() const { return digest_; }
  const std::string& versionInfo() const { return versionInfo_; }
  const platform::Value::Dictionary& servicesData() const { return servicesData_; }
  int64_t lastCheckinTimestampMillis() const { return lastCheckinTimestampMillis_; }

  // Both parts present and less than a day since the last check-in (a
  // timestamp in the future passes).
  bool hasValidCheckinInfo(int64_t nowMillis) const;
  // "<deviceID>|<secretToken>", or nullopt unless both are non-empty.
  std::optional<std::string> checkinKeychainContent() const;
  // Digest, version information, timestamp and services data.
  platform::Value::Dictionary checkinPlistContents() const;
  // Sets the fields of the plist keys; the two id keys and unknown keys are logged and skipped.
  void updateWithCheckinPlistContents(const platform::Value::Dictionary& dictionary);
  void reset();

  // Preferences of a keychain text of two non-empty parts around one "|", else null.
  static std::shared_ptr<MSGCheckinPreferences> preferencesFromKeychainContents(const std::string& text);
  static std::optional<std::string> checkinDeviceIDFromKeychainContent(const std::string& text);
  static std::optional<std::string> checkinSecretFromKeychainContent(const std::string& text);

 private:
  std::string deviceID_;
  std::string secretToken_;
  std::string digest_;
  std::string versionInfo_;
  platform::Value::Dictionary servicesData_;
  int64_t lastCheckinTimestampMillis_ = 0;
};

}  // namespace quillet::messaging
