#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/value/Value.h"

namespace quillet::instanceid {

// The device credential and the rest of the last check-in answer. The
// credential's keychain form is "<deviceID>|<secretToken>"; the other fields
// are kept in the five-key plist form. Empty strings stand for absent ones.
// A plain value; shared as std::shared_ptr and used on one queue at a time.
class InstanceIDCheckinPreferences {
 public:
  // Keys of the plist form, and the two old keys of early installs.
  static constexpr const char* kDigestKey = "IIDDigestKey";
  static constexpr const char* kVersionInfoKey = "IIDVersionInfo";
  static constexpr const char* kDeviceDataVersionKey = "IIDDeviceDataVersion";
  static constexpr const char* kLastCheckinTimestampKey = "IIDLastCheckinTimestampKey";
  static constexpr const char* kServicesDataKey = "IIDServicesData";
  static constexpr const char* kDeviceAuthIdKey = "IIDDeviceAuthIdKey";
  static constexpr const char* kSecretTokenKey = "IIDSecretTokenKey";
  // The credential lasts this long after the last check-in.
  static constexpr int64_t kCheckinValidityMillis = 86400000;

  InstanceIDCheckinPreferences() = default;
  InstanceIDCheckinPreferences(std::string deviceID, std::string secretToken);

  const std::string& deviceID() const { return deviceID_; }
  const std::string& secretToken() const { return secretToken_; }
  const std::string& deviceDataVersion() const { return deviceDataVersion_; }
  const std::string& digest() const { return digest_; }
  const std::string& versionInfo() const { return versionInfo_; }
  const platform::Value::Dictionary& servicesData() const { return servicesData_; }
  int64_t lastCheckinTimestampMillis() const { return lastCheckinTimestampMillis_; }
  void setLastCheckinTimestampMillis(int64_t millis) { lastCheckinTimestampMillis_ = millis; }

  // Both credential parts present and the last check-in less than a day before `nowMillis`.
  bool hasValidCheckinInfo(int64_t nowMillis) const;
  // The five keys of "g-checkin.plist".
  platform::Value::Dictionary checkinPlistContents() const;
  // "<deviceID>|<secretToken>", or nullopt unless both are non-empty.
  std::optional<std::string> checkinKeychainContent() const;
  // Sets the field of each known key; other keys are logged and skipped.
  void updateWithCheckinPlistContents(const platform::Value::Dictionary& dictionary);
  // Clears every field (timestamp 0).
  void reset();

  // Preferences holding the credential of a keychain text, or null when the
  // text is not two non-empty parts around one "|".
  static std::shared_ptr<InstanceIDCheckinPreferences> preferencesFromKeychainContents(const std::string& text);
  static std::optional<std::string> checkinDeviceIDFromKeychainContent(const std::string& text);
  static std::optional<std::string> checkinSecretFromKeychainContent(const std::string& text);
  // Part `index` (0 or 1) of the text split at "|", when there are exactly two.
  static std::optional<std::string> checkinKeychainContent(const std::string& text, size_t index);

 private:
  std::string deviceID_;
  std::string secretToken_;
  std::string deviceDataVersion_;
  std::string digest_;
  std::string versionInfo_;
  platform::Value::Dictionary servicesData_;
  int64_t lastCheckinTimestampMillis_ = 0;
};

}  // namespace quillet::instanceid
