#include "instanceid/tokens/InstanceIDTokenManager.h"

#include "instanceid/checkin/InstanceIDAuthService.h"
#include "instanceid/registration/InstanceIDRegistrationClient.h"
#include "instanceid/store/InstanceIDStore.h"
#include "instanceid/support/InstanceIDError.h"
#include "instanceid/support/InstanceIDLogger.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {

using platform::Value;

namespace {

constexpr const char* kAPNSTokenKey = "apns_token";
constexpr const char* kAPNSSandboxKey = "apns_sandbox";

// The request's APNs token as text, when it has one.
std::optional<std::string> apnsTokenInOptions(const Value::Dictionary& options) {
  const auto found = options.find(kAPNSTokenKey);
  if (found == options.end() || !found->second.isString()) return std::nullopt;
  return found->second.string();
}

bool isSandboxInOptions(const Value::Dictionary& options) {
  const auto found = options.find(kAPNSSandboxKey);
  return found != options.end() && found->second.boolValue();
}

std::shared_ptr<InstanceIDStore> makeDefaultStore(const std::shared_ptr<const InstanceIDEnvironment>& env) {
  return InstanceIDStore::defaultStore(env, [env](const std::string& deviceID, const std::string& secretToken) {
    InstanceIDRegistrationClient::deleteMSGTokenOnAppResetWithDeviceID(deviceID, secretToken, env,
                                                                       [](const std::optional<platform::Error>&) {});
  });
}

}  // namespace

InstanceIDTokenManager::InstanceIDTokenManager(std::shared_ptr<const InstanceIDEnvironment> env)
    : InstanceIDTokenManager(makeDefaultStore(env), nullptr, env) {}

InstanceIDTokenManager::InstanceIDTokenManager(std::shared_ptr<InstanceIDStore> store,
                                               std::shared_ptr<InstanceIDAuthService> authService,
                                               std::shared_ptr<const InstanceIDEnvironment> env)
    : env_(std::move(env)), instanceIDStore_(std::move(store)), authService_(std::move(authService)) {
  if (!authService_) authService_ = std::make_shared<InstanceIDAuthService>(instanceIDStore_, env_);
  registrar_ = std::make_shared<InstanceIDRegistrar>(authService_, env_);
}

void InstanceIDTokenManager::setAllowMissingAPNSToken(bool allow) {
  allowMissingAPNSToken_ = allow;
  authService_->allowMissingAPNSToken = allow;
}

bool InstanceIDTokenManager::isMessagingScope(const std::string& scope) {
  if (scope.size() != 3) return false;
  static const char kMessagingScope[] = "msg";
  for (size_t i = 0; i < 3; ++i) {
    const char c = scope[i];
    if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != kMessagingScope[i]) return false;
  }
  return true;
}

InstanceIDCachedToken InstanceIDTokenManager::tokenWithAuthorizedEntity(const std::string& authorizedEntity,
                                                                        const std::string& scope,
                                                                        const Value::Dictionary& options) {
  InstanceIDCachedToken result;
  const std::optional<std::string> token = instanceIDStore_->tokenWithAuthorizedEntity(authorizedEntity, scope);
  const auto stale = [&result] {
    result.status = InstanceIDCachedToken::StatusStale;
    result.shouldInvalidateAllTokens = true;
  };
  if (shouldResetTokenOnAppVersion()) {
    stale();
    return result;
  }
  if (isMessagingScope(scope) && token && !allowMissingAPNSToken_ &&
      shouldResetTokenOnAPNSToken(apnsTokenInOptions(options), isSandboxInOptions(options))) {
    stale();
    return result;
  }
  if (token && !token->empty()) {
    result.status = InstanceIDCachedToken::StatusUsable;
    result.token = token;
  }
  return result;
}

bool InstanceIDTokenManager::shouldResetTokenOnAppVersion() {
  if (instanceIDStore_->hasSavedAppVersion()) {
    return instanceIDStore_->currentSavedAppVersion().value_or("") != instanceIDStore_->currentAppVersion();
  }
  return !instanceIDStore_->currentAppVersion().empty();
}

bool InstanceIDTokenManager::shouldResetTokenOnAPNSToken(const std::optional<std::string>& apnsToken, bool isSandbox) {
  const std::optional<std::string> cached = instanceIDStore_->cachedAPNSTokenForServerType(isSandbox);
  return !(cached && apnsToken && *cached == *apnsToken);
}

void InstanceIDTokenManager::invalidateCachedToken(const InstanceIDCachedToken&, const std::string&,
                                                   const std::string& scope, const Value::Dictionary& options) {
  const bool appVersionChanged = shouldResetTokenOnAppVersion();
  const bool isSandbox = isSandboxInOptions(options);
  bool apnsChanged = false;
  if (isMessagingScope(scope) && !allowMissingAPNSToken_) {
    apnsChanged = shouldResetTokenOnAPNSToken(apnsTokenInOptions(options), isSandbox);
  }
  bool removed = false;
  if (appVersionChanged || apnsChanged) removed = instanceIDStore_->removeAllMSGTokensWithError(nullptr);
  std::string message;
  if (apnsChanged) {
    instanceIDStore_->removeCachedAPNSTokenForServeryType(isSandbox);
    message += "APNS token changed, ";
  }
  if (appVersionChanged) message += "App Version updated, ";
  if (!message.empty()) {
    iidLogInfo(platform::format(removed ? "%@ Did reset cached tokens" : "%@ Failed to reset cached tokens",
                                {Value(message)}));
  }
}

void InstanceIDTokenManager::fetchNewTokenWithAuthorizedEntity(const std::string& authorizedEntity,
                                                               const std::string& scope,
                                                               std::shared_ptr<InstanceIDKeyPair> keyPair,
                                                               const Value::Dictionary& options,
                                                               InstanceIDTokenHandler handler) {
  registrar_->fetchTokenWithAuthorizedEntity(
      authorizedEntity, scope, std::move(keyPair), options,
      [weak = weak_from_this(), authorizedEntity, scope, options, handler = std::move(handler)](
          const std::optional<std::string>& token, const std::optional<platform::Error>& error) {
        if (error) {
          if (handler) handler(std::nullopt, error);
          return;
        }
        if (auto manager = weak.lock()) {
          InstanceIDStore& store = *manager->instanceIDStore_;
          store.saveToken(token.value_or(""), authorizedEntity, scope);
          const std::optional<std::string> apnsToken = apnsTokenInOptions(options);
          if (isMessagingScope(scope) && apnsToken && !apnsToken->empty()) {
            store.saveAPNSToken(*apnsToken, isSandboxInOptions(options));
          }
          store.saveAppVersion();
        }
        if (handler) handler(token, std::nullopt);
      });
}

void InstanceIDTokenManager::deleteTokenWithAuthorizedEntity(const std::string& authorizedEntity,
                                                             const std::string& scope,
                                                             std::shared_ptr<InstanceIDKeyPair> keyPair,
                                                             InstanceIDDeleteHandler handler) {
  if (instanceIDStore_->tokenWithAuthorizedEntity(authorizedEntity, scope)) {
    if (instanceIDStore_->cacheTimeForTokenWithAuthorizedEntity(authorizedEntity, scope) == 0) {
      iidLogError(
          platform::format("Invalid 0 cache time for entity: %@, scope: %@", {Value(authorizedEntity), Value(scope)}));
    }
    instanceIDStore_->removeCachedTokenWithAuthorizedEntity(authorizedEntity, scope);
  }
  registrar_->deleteTokenWithAuthorizedEntity(authorizedEntity, scope, std::move(keyPair), std::move(handler));
}

void InstanceIDTokenManager::deleteAllTokensWithKeyPair(std::shared_ptr<InstanceIDKeyPair> keyPair,
                                                        InstanceIDDeleteHandler handler) {
  platform::Error error;
  deleteAllTokensLocallyWithError(&error);
  // A missing item also reports an error here.
  if (!error.ok()) {
    if (handler) handler(errorWithInstanceIDErrorCode(InstanceIDErrorCodeDeleteTokensFailed));
    return;
  }
  registrar_->deleteTokenWithAuthorizedEntity("*", "*", std::move(keyPair), std::move(handler));
}

bool InstanceIDTokenManager::deleteAllTokensLocallyWithError(platform::Error* error) {
  return instanceIDStore_->removeAllCachedTokensWithError(error);
}

}  // namespace quillet::instanceid
