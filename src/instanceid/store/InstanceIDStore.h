#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "instanceid/store/InstanceIDBackupExcludedPlist.h"
#include "instanceid/store/InstanceIDCheckinCache.h"
#include "instanceid/store/InstanceIDCheckinStore.h"
#include "instanceid/store/InstanceIDTokenStore.h"
#include "instanceid/support/InstanceIDEnvironment.h"

namespace quillet::instanceid {

// Everything the subsystem remembers between runs, behind one object: the
// device credential (check-in store), the token records (token store), the
// APNs tokens last registered (plist "com.stikri.iid-tokens") and the
// defaults markers of library and app version. Creation recognises a
// reinstall (the keychain survived, the defaults did not) and migrates old
// plist tokens into the keychain. Used from the main queue; the check-in
// service may call the cache operations from its own serial queue.
class InstanceIDStore : public InstanceIDCheckinCache {
 public:
  // The best-effort request that the server forget the MSG token of a
  // previous install; its outcome is ignored.
  using AppResetTokenDeleter = std::function<void(const std::string& deviceID, const std::string& secretToken)>;

  static constexpr const char* kLibraryVersion = "1.1.7";
  static constexpr const char* kLibraryVersionKey = "IID-version";

  // A new store on each call over the plists "com.stikri.iid-tokens" and "g-checkin".
  static std::shared_ptr<InstanceIDStore> defaultStore(std::shared_ptr<const InstanceIDEnvironment> env,
                                                       AppResetTokenDeleter deleter);
  // Runs, in order, resetNewApp, saveLibraryVersion and moveTokensToKeychain.
  InstanceIDStore(std::shared_ptr<InstanceIDBackupExcludedPlist> tokenPlist,
                  std::shared_ptr<InstanceIDCheckinStore> checkinStore,
                  std::shared_ptr<InstanceIDTokenStore> tokenStore, std::shared_ptr<const InstanceIDEnvironment> env,
                  AppResetTokenDeleter deleter);

  // Tokens. Empty arguments give nullopt / 0 without a keychain read.
  std::optional<std::string> tokenWithAuthorizedEntity(const std::string& entity, const std::string& scope);
  int64_t cacheTimeForTokenWithAuthorizedEntity(const std::string& entity, const std::string& scope);
  bool saveToken(const std::string& token, const std::string& entity, const std::string& scope);
  void removeCachedTokenWithAuthorizedEntity(const std::string& entity, const std::string& scope);
  bool removeAllCachedTokensWithError(platform::Error* error);
  bool removeAllMSGTokensWithError(platform::Error* error);

  // The device credential (InstanceIDCheckinCache).
  bool saveCheckinPreferences(const InstanceIDCheckinPreferences& preferences, platform::Error* error) override;
  std::shared_ptr<InstanceIDCheckinPreferences> cachedCheckinPreferences() override;
  bool removeCheckinPreferences(platform::Error* error) override;

  // APNs tokens by server type (true: sandbox).
  std::optional<std::string> cachedAPNSTokenForServerType(bool isSandbox);
  void saveAPNSToken(const std::string& token, bool isSandbox);
  void removeCachedAPNSTokenForServeryType(bool isSandbox);

  // App version at the last successful token fetch.
  static std::string appVersionKey();
  void saveAppVersion();
  std::optional<std::string> currentSavedAppVersion() const;
  std::string currentAppVersion() const;
  bool hasSavedAppVersion() const;

  // Library version marker: present from the second start on.
  void saveLibraryVersion();
  std::optional<std::string> currentSavedLibraryVersion() const;
  bool hasSavedLibraryVersion() const;

  // Cache keys.
  static std::string tokenPlistFileName();
  static std::string cacheKeyForAuthorizedEntity(const std::string& entity, const std::string& scope);
  static std::optional<std::string> authorizedEntityInTokenCacheKey(const std::string& key);
  static std::optional<std::string> scopeInTokenCacheKey(const std::string& key);
  // Part `index` of `key` split at "|", when it has exactly 4 parts.
  static std::optional<std::string> entityWithIndex(size_t index, const std::string& key);
  static std::string apnsTokenCacheKeyForServerType(bool isSandbox);

  InstanceIDCheckinStore& checkinStore() { return *checkinStore_; }
  InstanceIDTokenStore& tokenStore() { return *tokenStore_; }
  InstanceIDBackupExcludedPlist& tokenPlist() { return *tokenPlist_; }

 private:
  void resetNewApp();
  void moveTokensToKeychain();

  std::shared_ptr<InstanceIDBackupExcludedPlist> tokenPlist_;
  std::shared_ptr<InstanceIDCheckinStore> checkinStore_;
  std::shared_ptr<InstanceIDTokenStore> tokenStore_;
  std::shared_ptr<const InstanceIDEnvironment> env_;
  AppResetTokenDeleter deleter_;
};

}  // namespace quillet::instanceid
