#pragma once

#include <memory>
#include <string>

#include "instanceid/store/InstanceIDAuthKeychain.h"
#include "instanceid/store/InstanceIDBackupExcludedPlist.h"
#include "instanceid/store/InstanceIDCheckinPreferences.h"
#include "instanceid/support/InstanceIDEnvironment.h"

namespace quillet::instanceid {

// The device credential at rest: the secret pair in the keychain item
// (generic "com.stikri.iid") and the rest in the plist "g-checkin". Creating
// a store moves secrets that old installs kept in the plist into the
// keychain. Not thread-safe: used from one queue at a time.
class InstanceIDCheckinStore {
 public:
  static constexpr const char* kCheckinPlistName = "g-checkin";
  static constexpr const char* kCheckinKeychainGeneric = "com.stikri.iid";
  static constexpr const char* kCheckinKeychainService = "com.stikri.iid.checkin-service";
  static constexpr const char* kCheckinKeychainAccount = "com.stikri.iid.checkin-account";

  InstanceIDCheckinStore(const std::string& checkinPlistFileName, std::shared_ptr<const InstanceIDEnvironment> env);
  InstanceIDCheckinStore(std::shared_ptr<InstanceIDBackupExcludedPlist> plist,
                         std::shared_ptr<InstanceIDAuthKeychain> keychain);

  bool hasCheckinPlist() const;
  // Keychain item first, then the plist; a failed plist write takes the
  // keychain item away again. False when the credential is incomplete.
  bool saveCheckinPreferences(const InstanceIDCheckinPreferences& preferences, platform::Error* error);
  // Keychain item first (a failure stops there), then the plist.
  bool removeCheckinPreferencesWithError(platform::Error* error);
  // The keychain credential (or the plist's old pair) with the cached plist
  // fields, or null when there is none.
  std::shared_ptr<InstanceIDCheckinPreferences> cachedCheckinPreferences();
  // Moves "IIDDeviceAuthIdKey" and "IIDSecretTokenKey" from the plist into the keychain.
  void moveCheckinAuthPreferencesToKeychain();

  InstanceIDBackupExcludedPlist& plist() { return *plist_; }
  InstanceIDAuthKeychain& keychain() { return *keychain_; }

 private:
  std::shared_ptr<InstanceIDBackupExcludedPlist> plist_;
  std::shared_ptr<InstanceIDAuthKeychain> keychain_;
};

}  // namespace quillet::instanceid
