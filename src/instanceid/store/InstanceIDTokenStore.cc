#include "instanceid/store/InstanceIDTokenStore.h"

#include "instanceid/support/InstanceIDError.h"
#include "instanceid/support/InstanceIDLogger.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {

InstanceIDTokenStore::InstanceIDTokenStore(std::shared_ptr<InstanceIDAuthKeychain> keychain,
                                           std::shared_ptr<const InstanceIDEnvironment> env)
    : keychain_(std::move(keychain)), env_(std::move(env)) {}

std::shared_ptr<InstanceIDTokenStore> InstanceIDTokenStore::defaultStore(
    std::shared_ptr<const InstanceIDEnvironment> env) {
  auto keychain = std::make_shared<InstanceIDAuthKeychain>(kTokenKeychainGeneric, env);
  return std::make_shared<InstanceIDTokenStore>(std::move(keychain), std::move(env));
}

std::string InstanceIDTokenStore::cacheKeyForAuthorizedEntity(const std::string& entity, const std::string& scope) {
  return platform::format("%@|%@|%@", "|T", entity, scope);
}

std::string InstanceIDTokenStore::cacheValueForToken(const std::string& token, int64_t nowSeconds) {
  return platform::format("%lld%@%@", static_cast<long long>(nowSeconds), kTokenSeparator, token);
}

std::optional<std::string> InstanceIDTokenStore::actualTokenFromCachedToken(const std::string& cachedToken) {
  const size_t at = cachedToken.find(kTokenSeparator);
  if (at == std::string::npos) return std::nullopt;
  const size_t start = at + std::char_traits<char>::length(kTokenSeparator);
  if (start >= cachedToken.size()) return std::nullopt;
  return cachedToken.substr(start);
}

int64_t InstanceIDTokenStore::cacheTimeForCachedToken(const std::string& cachedToken) {
  const size_t at = cachedToken.find(kTokenSeparator);
  if (at == std::string::npos || at == 0) return 0;
  return platform::Value(cachedToken.substr(0, at)).integerValue();
}

std::optional<std::string> InstanceIDTokenStore::tokenWithAuthorizedEntity(const std::string& entity,
                                                                           const std::string& scope) {
  platform::Error error;
  const auto record = keychain_->passwordForService(scope, entity, &error);
  if (!record) {
    iidLogDebug(platform::format("Unable to find token in cache %@", error.description()));
    return std::nullopt;
  }
  auto token = actualTokenFromCachedToken(*record);
  if (!token) {
    iidLogError(platform::format("Cannot decode cached IID token to get actual token %@", *record));
    return std::nullopt;
  }
  return token;
}

int64_t InstanceIDTokenStore::cacheTimeForTokenWithAuthorizedEntity(const std::string& entity,
                                                                    const std::string& scope) {
  platform::Error error;
  const auto record = keychain_->passwordForService(scope, entity, &error);
  if (!record) {
    iidLogDebug(platform::format("Unable to find token in cache %@", error.description()));
    return 0;
  }
  const int64_t cacheTime = cacheTimeForCachedToken(*record);
  if (cacheTime == 0) iidLogError(platform::format("Cannot decode cached IID token to get cache time %@", *record));
  return cacheTime;
}

bool InstanceIDTokenStore::saveToken(const std::string& token, const std::string& entity, const std::string& scope) {
  platform::Error error = errorWithInstanceIDErrorCode(InstanceIDAuthKeychain::kStatusBadAddress);
  bool saved = false;
  if (!token.empty()) {
    const std::string record = cacheValueForToken(token, env_->nowSeconds());
    if (keychain_->passwordForService(scope, entity, nullptr) == token) return true;
    saved = keychain_->setPassword(record, scope, std::nullopt, entity, &error);
  }
  if (!saved) {
    iidLogError(platform::format("Error unable to save iid-token to keychain %@", error.description()));
    return false;
  }
  iidLogDebug(platform::format("Cached new token for authorizedEntity: %@, scope: %@", entity, scope));
  return true;
}

bool InstanceIDTokenStore::removeTokenWithAuthorizedEntity(const std::string& entity, const std::string& scope,
                                                           platform::Error* error) {
  platform::Error local;
  const bool removed = keychain_->removePasswordForService(scope, entity, &local);
  if (error && !local.ok()) *error = local;
  if (removed) {
    iidLogDebug(
        platform::format("Successfully removed token from keychain for auth entity: %@ scope: %@", entity, scope));
  } else {
    iidLogError(platform::format("Error failed to delete token from Keychain %@", local.description()));
  }
  return removed;
}

bool InstanceIDTokenStore::removeMSGTokensWithError(platform::Error* error) {
  platform::Error local;
  const bool removed = keychain_->removePasswordForService("MSG", "*", &local);
  if (error && !local.ok()) *error = local;
  if (removed) {
    iidLogDebug("Successfully removed all MSG tokens");
  } else {
    iidLogError(platform::format("Error failed to delete all MSG tokens from keychain %@", local.description()));
  }
  return removed;
}

bool InstanceIDTokenStore::removeAllTokensWithError(platform::Error* error) {
  platform::Error local;
  const bool removed = keychain_->removeAllItemsWithError(&local);
  if (error && !local.ok()) *error = local;
  if (removed) {
    iidLogDebug("Successfully removed all IID tokens");
  } else {
    iidLogError(platform::format("Error failed to remove all tokens from keychain %@", local.description()));
  }
  return removed;
}

}  // namespace quillet::instanceid
