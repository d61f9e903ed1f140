#include "instanceid/store/InstanceIDStore.h"

#include <vector>

#include "instanceid/support/InstanceIDLogger.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {
namespace {

constexpr const char* kTokenPlistFileName = "com.stikri.iid-tokens";
constexpr const char* kOldTokenKeyPrefix = "|T";
constexpr const char* kOldTokenTimeSuffix = "-time";

bool hasPrefix(const std::string& text, const std::string& prefix) { return text.starts_with(prefix); }

}  // namespace

std::shared_ptr<InstanceIDStore> InstanceIDStore::defaultStore(std::shared_ptr<const InstanceIDEnvironment> env,
                                                               AppResetTokenDeleter deleter) {
  auto tokenPlist = std::make_shared<InstanceIDBackupExcludedPlist>(tokenPlistFileName(), env);
  auto checkinStore = std::make_shared<InstanceIDCheckinStore>(InstanceIDCheckinStore::kCheckinPlistName, env);
  auto tokenStore = InstanceIDTokenStore::defaultStore(env);
  return std::make_shared<InstanceIDStore>(std::move(tokenPlist), std::move(checkinStore), std::move(tokenStore),
                                           std::move(env), std::move(deleter));
}

InstanceIDStore::InstanceIDStore(std::shared_ptr<InstanceIDBackupExcludedPlist> tokenPlist,
                                 std::shared_ptr<InstanceIDCheckinStore> checkinStore,
                                 std::shared_ptr<InstanceIDTokenStore> tokenStore,
                                 std::shared_ptr<const InstanceIDEnvironment> env, AppResetTokenDeleter deleter)
    : tokenPlist_(std::move(tokenPlist)),
      checkinStore_(std::move(checkinStore)),
      tokenStore_(std::move(tokenStore)),
      env_(std::move(env)),
      deleter_(std::move(deleter)) {
  resetNewApp();
  saveLibraryVersion();
  moveTokensToKeychain();
}

// A missing library marker beside a surviving keychain means the app was
// deleted and installed again: forget the old credential and tokens.
void InstanceIDStore::resetNewApp() {
  if (hasSavedLibraryVersion()) return;
  std::shared_ptr<InstanceIDCheckinPreferences> previous;
  if (checkinStore_->hasCheckinPlist()) {
    iidLogDebug("No InstanceID version found. Checkin plist found.");
  } else {
    previous = checkinStore_->cachedCheckinPreferences();
    checkinStore_->removeCheckinPreferencesWithError(nullptr);
  }
  if (!tokenPlist_->doesFileExist()) tokenStore_->removeAllTokensWithError(nullptr);
  if (previous && !previous->deviceID().empty() && !previous->secretToken().empty() && deleter_) {
    deleter_(previous->deviceID(), previous->secretToken());
  }
}

// Old installs kept tokens in the plist: move them to the keychain, drop
// their time entries and anything unknown, keep the APNs entries.
void InstanceIDStore::moveTokensToKeychain() {
  const auto contents = tokenPlist_->contentAsDictionary();
  if (!contents) return;
  platform::Value::Dictionary remaining = *contents;
  const std::string prodKey = apnsTokenCacheKeyForServerType(false);
  const std::string sandboxKey = apnsTokenCacheKeyForServerType(true);
  bool saveFailed = false;
  for (const auto& [key, value] : *contents) {
    if (hasPrefix(key, prodKey) || hasPrefix(key, sandboxKey)) continue;
    if (hasPrefix(key, kOldTokenKeyPrefix) && !key.ends_with(kOldTokenTimeSuffix)) {
      const std::string token = value.isString() ? value.string() : std::string();
      const bool saved = tokenStore_->saveToken(token, authorizedEntityInTokenCacheKey(key).value_or(""),
                                                scopeInTokenCacheKey(key).value_or(""));
      if (!saved) saveFailed = true;
    }
    remaining.erase(key);
  }
  if (saveFailed) iidLogError("Failed to move some tokens to Keychain.");
  if (remaining.size() < contents->size()) {
    platform::Error error;
    if (!tokenPlist_->writeDictionary(remaining, &error)) {
      iidLogError(platform::format("Failed to remove InstanceID tokens from plist %@", error.description()));
    }
  }
}

std::optional<std::string> InstanceIDStore::tokenWithAuthorizedEntity(const std::string& entity,
                                                                      const std::string& scope) {
  if (entity.empty() || scope.empty()) return std::nullopt;
  return tokenStore_->tokenWithAuthorizedEntity(entity, scope);
}

int64_t InstanceIDStore::cacheTimeForTokenWithAuthorizedEntity(const std::string& entity, const std::string& scope) {
  if (entity.empty() || scope.empty()) return 0;
  return tokenStore_->cacheTimeForTokenWithAuthorizedEntity(entity, scope);
}

bool InstanceIDStore::saveToken(const std::string& token, const std::string& entity, const std::string& scope) {
  return tokenStore_->saveToken(token, entity, scope);
}

void InstanceIDStore::removeCachedTokenWithAuthorizedEntity(const std::string& entity, const std::string& scope) {
  if (entity.empty() || scope.empty()) {
    iidLogError(platform::format("Will not delete token with invalid entity: %@, scope: %@", entity, scope));
    return;
  }
  tokenStore_->removeTokenWithAuthorizedEntity(entity, scope, nullptr);
}

bool InstanceIDStore::removeAllCachedTokensWithError(platform::Error* error) {
  return tokenStore_->removeAllTokensWithError(error);
}

bool InstanceIDStore::removeAllMSGTokensWithError(platform::Error* error) {
  return tokenStore_->removeMSGTokensWithError(error);
}

bool InstanceIDStore::saveCheckinPreferences(const InstanceIDCheckinPreferences& preferences, platform::Error* error) {
  return checkinStore_->saveCheckinPreferences(preferences, error);
}

std::shared_ptr<InstanceIDCheckinPreferences> InstanceIDStore::cachedCheckinPreferences() {
  return checkinStore_->cachedCheckinPreferences();
}

bool InstanceIDStore::removeCheckinPreferences(platform::Error* error) {
  return checkinStore_->removeCheckinPreferencesWithError(error);
}

std::optional<std::string> InstanceIDStore::cachedAPNSTokenForServerType(bool isSandbox) {
  const auto contents = tokenPlist_->contentAsDictionary();
  if (!contents) return std::nullopt;
  const auto found = contents->find(apnsTokenCacheKeyForServerType(isSandbox));
  if (found == contents->end() || !found->second.isString()) return std::nullopt;
  return found->second.string();
}

void InstanceIDStore::saveAPNSToken(const std::string& token, bool isSandbox) {
  if (token.empty()) return;
  const std::string key = apnsTokenCacheKeyForServerType(isSandbox);
  auto contents = tokenPlist_->contentAsDictionary().value_or(platform::Value::Dictionary());
  contents[key] = platform::Value(token);
  if (!tokenPlist_->writeDictionary(contents, nullptr)) {
    iidLogError(platform::format("Failed to save APNS token with key %@", key));
  }
}

void InstanceIDStore::removeCachedAPNSTokenForServeryType(bool isSandbox) {
  const std::string key = apnsTokenCacheKeyForServerType(isSandbox);
  auto contents = tokenPlist_->contentAsDictionary();
  if (!contents || contents->erase(key) == 0) return;
  if (!tokenPlist_->writeDictionary(*contents, nullptr)) {
    iidLogError(platform::format("Failed to remove APNS token with key %@", key));
  }
}

std::string InstanceIDStore::appVersionKey() { return platform::format("%@app_version", "com.stikri.iid-"); }

void InstanceIDStore::saveAppVersion() { env_->defaults->setString(currentAppVersion(), appVersionKey()); }

std::optional<std::string> InstanceIDStore::currentSavedAppVersion() const {
  return env_->defaults->stringForKey(appVersionKey());
}

std::string InstanceIDStore::currentAppVersion() const { return env_->appVersion; }

bool InstanceIDStore::hasSavedAppVersion() const {
  const auto saved = currentSavedAppVersion();
  return saved && !saved->empty();
}

void InstanceIDStore::saveLibraryVersion() {
  env_->defaults->setString(kLibraryVersion, kLibraryVersionKey);
  iidLogDebug(platform::format("Save InstanceID library version %@", kLibraryVersion));
}

std::optional<std::string> InstanceIDStore::currentSavedLibraryVersion() const {
  return env_->defaults->stringForKey(kLibraryVersionKey);
}

bool InstanceIDStore::hasSavedLibraryVersion() const {
  return !env_->defaults->objectForKey(kLibraryVersionKey).isNil();
}

std::string InstanceIDStore::tokenPlistFileName() { return kTokenPlistFileName; }

std::string InstanceIDStore::cacheKeyForAuthorizedEntity(const std::string& entity, const std::string& scope) {
  return InstanceIDTokenStore::cacheKeyForAuthorizedEntity(entity, scope);
}

std::optional<std::string> InstanceIDStore::entityWithIndex(size_t index, const std::string& key) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (size_t bar = key.find('|'); bar != std::string::npos; bar = key.find('|', start)) {
    parts.push_back(key.substr(start, bar - start));
    start = bar + 1;
  }
  parts.push_back(key.substr(start));
  if (parts.size() != 4 || index >= parts.size()) return std::nullopt;
  return parts[index];
}

std::optional<std::string> InstanceIDStore::authorizedEntityInTokenCacheKey(const std::string& key) {
  return entityWithIndex(2, key);
}

std::optional<std::string> InstanceIDStore::scopeInTokenCacheKey(const std::string& key) {
  return entityWithIndex(3, key);
}

std::string InstanceIDStore::apnsTokenCacheKeyForServerType(bool isSandbox) {
  return platform::format("%@|%@|%@", "|O", "IIDApnsTokenKey", isSandbox ? "sandbox" : "prod");
}

}  // namespace quillet::instanceid
