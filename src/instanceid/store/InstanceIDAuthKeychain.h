#pragma once

#include <memory>
#include <optional>
#include <string>

#include "instanceid/support/InstanceIDEnvironment.h"
#include "platform/keychain/KeychainQuery.h"
#include "platform/value/Error.h"

namespace quillet::instanceid {

// Generic-password items of one `generic` in the environment's keychain,
// addressed by (service, account); "*" or "" as service or account means
// any. Errors carry domain "com.stikri.iid" and the keychain's status as
// code (-1301 for an empty service or account, -25300 for a missing item).
// Caches nothing; callable from any thread (the keychain locks).
class InstanceIDAuthKeychain {
 public:
  InstanceIDAuthKeychain(std::string identifier, std::shared_ptr<const InstanceIDEnvironment> env);

  static constexpr int32_t kStatusBadAddress = -1301;
  static constexpr const char* kDefaultAccessibility = "kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly";

  // Generic passwords with, where set and not "*", the generic, account and service.
  static platform::KeychainQuery keychainQueryForService(const std::string& service, const std::string& account,
                                                         const std::string& generic);
  platform::KeychainQuery keychainQueryForService(const std::string& service, const std::string& account) const;

  // The first matching item's text, or nullopt with `error` filled.
  std::optional<std::string> passwordForService(const std::string& service, const std::string& account,
                                                platform::Error* error);
  // Deletes every matching item. True also when none matched, though `error`
  // then holds -25300.
  bool removePasswordForService(const std::string& service, const std::string& account, platform::Error* error);
  // Replaces the item: deletes the old one, then adds `password` with
  // `accessibility` (nullopt: readable after first unlock, this device only).
  bool setPassword(const std::string& password, const std::string& service,
                   const std::optional<std::string>& accessibility, const std::string& account, platform::Error* error);
  // Deletes every item of this `generic`.
  bool removeAllItemsWithError(platform::Error* error);

  const std::string& generic() const { return generic_; }

 private:
  std::string generic_;
  std::shared_ptr<const InstanceIDEnvironment> env_;
};

}  // namespace quillet::instanceid
