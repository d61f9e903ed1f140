#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "instanceid/keypair/InstanceIDKeyPair.h"
#include "instanceid/store/InstanceIDBackupExcludedPlist.h"
#include "instanceid/support/InstanceIDEnvironment.h"
#include "platform/value/Error.h"

namespace quillet::instanceid {

// Keeps the instance's key pair: the key items in the keychain, their
// creation times in the plist "com.stikri.iid-keypair" (Documents, so it goes
// with the app while the keychain stays: keys without a creation time are an
// earlier install's and are replaced), and the pair in memory once loaded.
// Every operation takes the store's lock, so it may be used from any thread;
// loadKeyPairWithError may generate a key and holds the lock throughout:
// run it off the main queue.
class InstanceIDKeyPairStore {
 public:
  explicit InstanceIDKeyPairStore(std::shared_ptr<const InstanceIDEnvironment> env);

  // Whether the keychain holds a pair of the empty subtype; when it does not,
  // the creation time plist is deleted.
  bool hasCachedKeyPairs();
  // The app identity of the loaded (or new) pair. A found pair resets `error`
  // to the empty Error; an empty identity gives error 7.
  std::optional<std::string> appIdentityWithError(platform::Error* error);
  // The pair in memory, else the valid one in the keychain, else a new one.
  std::shared_ptr<InstanceIDKeyPair> loadKeyPairWithError(platform::Error* error);

  // Generates a pair under the subtype's tags and records its creation time
  // (seconds since 1970); nullptr when either step fails (no items are left).
  std::shared_ptr<InstanceIDKeyPair> generateAndSaveKeyWithSubtype(const std::string& subtype, int64_t creationTime,
                                                                   platform::Error* error);
  // The stored pair when its creation time is recorded; otherwise the items
  // are erased and error 2005 is given.
  std::shared_ptr<InstanceIDKeyPair> validCachedKeyPairWithSubtype(const std::string& subtype, platform::Error* error);
  // The stored pair of the subtype's tags, whatever the plist says.
  std::shared_ptr<InstanceIDKeyPair> cachedKeyPairWithSubtype(const std::string& subtype, platform::Error* error);
  // Forgets the creation time and deletes the items; true when the items are gone.
  bool deleteSavedKeyPairWithSubtype(const std::string& subtype, platform::Error* error);
  // Deletes the creation time plist.
  bool removeKeyPairCreationTimePlistWithError(platform::Error* error);

  // "com.stikri.iid-" + subtype + "|P|", "|K|"; subtype + "|S|cre".
  static std::string publicTagWithSubtype(const std::string& subtype);
  static std::string privateTagWithSubtype(const std::string& subtype);
  static std::string creationTimeKeyWithSubtype(const std::string& subtype);
  // "com.stikri.iid-keypair".
  static std::string keyStoreFileName();

 private:
  std::shared_ptr<const InstanceIDEnvironment> env_;
  std::recursive_mutex mutex_;  // guards plist_ and keyPair_
  InstanceIDBackupExcludedPlist plist_;
  std::shared_ptr<InstanceIDKeyPair> keyPair_;
};

}  // namespace quillet::instanceid
