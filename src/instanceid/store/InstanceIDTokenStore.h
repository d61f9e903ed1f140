#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "instanceid/store/InstanceIDAuthKeychain.h"
#include "instanceid/support/InstanceIDEnvironment.h"

namespace quillet::instanceid {

// Token records in the keychain (generic "com.stikri.iid-tokens", service =
// scope, account = authorized entity), each "<seconds>|Token|<token>".
// Not thread-safe: used from the main queue.
class InstanceIDTokenStore {
 public:
  static constexpr const char* kTokenKeychainGeneric = "com.stikri.iid-tokens";
  static constexpr const char* kTokenSeparator = "|Token|";

  InstanceIDTokenStore(std::shared_ptr<InstanceIDAuthKeychain> keychain,
                       std::shared_ptr<const InstanceIDEnvironment> env);
  // A store over the keychain "com.stikri.iid-tokens" of `env`.
  static std::shared_ptr<InstanceIDTokenStore> defaultStore(std::shared_ptr<const InstanceIDEnvironment> env);

  // The token of the record, or nullopt (logged) when absent or undecodable.
  std::optional<std::string> tokenWithAuthorizedEntity(const std::string& entity, const std::string& scope);
  // The record's time in seconds since 1970; 0 when absent or undecodable.
  int64_t cacheTimeForTokenWithAuthorizedEntity(const std::string& entity, const std::string& scope);
  // Writes a new record stamped with the current time. False (logged) for an
  // empty token or a failed write.
  bool saveToken(const std::string& token, const std::string& entity, const std::string& scope);
  // Removals leave `error` untouched when the keychain reports success; a
  // missing item returns true and fills it with -25300.
  bool removeTokenWithAuthorizedEntity(const std::string& entity, const std::string& scope, platform::Error* error);
  // Every record of the exact scope "MSG".
  bool removeMSGTokensWithError(platform::Error* error);
  // Every record of this store.
  bool removeAllTokensWithError(platform::Error* error);

  // "|T|<entity>|<scope>": the registration key and old plist key of a token.
  static std::string cacheKeyForAuthorizedEntity(const std::string& entity, const std::string& scope);
  static std::string cacheValueForToken(const std::string& token, int64_t nowSeconds);
  // What follows the first "|Token|", or nullopt when nothing does.
  static std::optional<std::string> actualTokenFromCachedToken(const std::string& cachedToken);
  // The number before the first "|Token|"; 0 when there is none.
  static int64_t cacheTimeForCachedToken(const std::string& cachedToken);

 private:
  std::shared_ptr<InstanceIDAuthKeychain> keychain_;
  std::shared_ptr<const InstanceIDEnvironment> env_;
};

}  // namespace quillet::instanceid
