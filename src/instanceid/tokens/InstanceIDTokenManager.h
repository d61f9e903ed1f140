#pragma once

#include <memory>
#include <optional>
#include <string>

#include "instanceid/registration/InstanceIDRegistrar.h"
#include "instanceid/support/InstanceIDEnvironment.h"
#include "instanceid/tokens/InstanceIDCachedToken.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::instanceid {

class InstanceIDAuthService;
class InstanceIDKeyPair;
class InstanceIDStore;

// Decides whether a cached token may be handed out or must be fetched again,
// keeps the cache after a fetch and carries out deletions. A token has no
// age limit: only a changed app version and, for the messaging scope, a
// changed APNs token make the cache stale. Used on the main queue; a fetch's
// completion runs where the registration client calls it. Shared as
// std::shared_ptr (completions hold it weakly); lives as long as the facade.
class InstanceIDTokenManager : public std::enable_shared_from_this<InstanceIDTokenManager> {
 public:
  // Builds the store (with the migrations of a start and, on a reinstall,
  // the best-effort delete of the earlier install's token), the auth
  // service over it and the registrar over that.
  explicit InstanceIDTokenManager(std::shared_ptr<const InstanceIDEnvironment> env);
  // Over a given store and auth service.
  InstanceIDTokenManager(std::shared_ptr<InstanceIDStore> store, std::shared_ptr<InstanceIDAuthService> authService,
                         std::shared_ptr<const InstanceIDEnvironment> env);

  bool allowMissingAPNSToken() const { return allowMissingAPNSToken_; }
  // Sets the field and the auth service's.
  void setAllowMissingAPNSToken(bool allow);

  const std::shared_ptr<InstanceIDStore>& instanceIDStore() const { return instanceIDStore_; }
  const std::shared_ptr<InstanceIDAuthService>& authService() const { return authService_; }
  const std::shared_ptr<InstanceIDRegistrar>& registrar() const { return registrar_; }

  // What the cache can give for (entity, scope) under the request's options
  // ("apns_token" as text, "apns_sandbox").
  InstanceIDCachedToken tokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                                  const platform::Value::Dictionary& options);
  // Fetches through the registrar; on success caches the token, the APNs
  // token of a messaging scope and the app version, then answers.
  void fetchNewTokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                         std::shared_ptr<InstanceIDKeyPair> keyPair,
                                         const platform::Value::Dictionary& options, InstanceIDTokenHandler handler);
  // Drops the cached token first, then asks the server.
  void deleteTokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                       std::shared_ptr<InstanceIDKeyPair> keyPair, InstanceIDDeleteHandler handler);
  // Drops all cached tokens; error 1007 (and no request) when that reports
  // an error, else the server deletes entity "*", scope "*".
  void deleteAllTokensWithKeyPair(std::shared_ptr<InstanceIDKeyPair> keyPair, InstanceIDDeleteHandler handler);
  bool deleteAllTokensLocallyWithError(platform::Error* error);

  // The saved app version differs from the current one (no saved one: the
  // current one is non-empty).
  bool shouldResetTokenOnAppVersion();
  // The cached APNs token of that server type differs from `apnsToken`;
  // both absent counts as differing.
  bool shouldResetTokenOnAPNSToken(const std::optional<std::string>& apnsToken, bool isSandbox);
  // Before a fetch after a stale lookup: drops the "MSG" tokens (and the
  // cached APNs token when it changed) and logs why.
  void invalidateCachedToken(const InstanceIDCachedToken& cachedToken, const std::string& authorizedEntity,
                             const std::string& scope, const platform::Value::Dictionary& options);

  // "MSG" in any case.
  static bool isMessagingScope(const std::string& scope);

 private:
  std::shared_ptr<const InstanceIDEnvironment> env_;
  bool allowMissingAPNSToken_ = false;
  std::shared_ptr<InstanceIDStore> instanceIDStore_;
  std::shared_ptr<InstanceIDAuthService> authService_;
  std::shared_ptr<InstanceIDRegistrar> registrar_;
};

}  // namespace quillet::instanceid
