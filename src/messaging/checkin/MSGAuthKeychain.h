#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/keychain/Keychain.h"
#include "platform/value/Error.h"

namespace quillet::messaging {

// Generic-password items of one generic (the identifier), addressed by the
// exact (service, account): no wildcards. Errors have domain
// "com.stikri.msg" and the keychain's status as code; -1301 for an empty
// service, account or password. The keychain is not owned and outlives this
// object. Callable from any thread (the keychain locks).
class MSGAuthKeychain {
 public:
  static constexpr int32_t kStatusBadAddress = -1301;
  static constexpr const char* kDefaultAccessibility = "kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly";

  MSGAuthKeychain(std::string identifier, platform::Keychain& keychain);

  std::optional<std::string> passwordForService(const std::string& service, const std::string& account,
                                                platform::Error* error) const;
  // True only when an item was deleted; a missing item fills `error` with -25300.
  bool removePasswordForService(const std::string& service, const std::string& account, platform::Error* error);
  // Deletes the old item, then adds `password` (accessibility nullopt:
  // readable after first unlock, this device only).
  bool setPassword(const std::string& password, const std::string& service,
                   const std::optional<std::string>& accessibility, const std::string& account, platform::Error* error);

  const std::string& generic() const { return generic_; }

 private:
  platform::KeychainQuery queryForService(const std::string& service, const std::string& account) const;

  std::string generic_;
  platform::Keychain& keychain_;
};

}  // namespace quillet::messaging
