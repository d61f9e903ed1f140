#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "backend/authority/BackendRandom.h"

namespace quillet::backend {

// One token that the registration server issued.
struct RegistrationToken {
  std::string device;  // device id text
  std::string appId;   // the instance's identity
  std::string sender;  // authorized entity
  std::string scope;
  std::string token;
};

// The tokens issued, one per (device, appid, sender, scope): asking again
// gives the same token until it is deleted. Thread-safe.
class RegistrationTokenBook {
 public:
  // The token of that key, issued now if there is none: the appid, ":" and
  // 140 characters of [A-Za-z0-9_-].
  std::string tokenFor(const std::string& device, const std::string& appId, const std::string& sender,
                       const std::string& scope);
  // Deletes the device's tokens of `scope` ("*": every scope), limited to
  // `appId` and `sender` when given; the number deleted.
  size_t remove(const std::string& device, const std::string& scope, const std::optional<std::string>& appId,
                const std::optional<std::string>& sender);
  // The device's tokens, oldest first.
  std::vector<RegistrationToken> tokens(const std::string& device) const;

 private:
  mutable std::mutex mutex_;
  std::vector<RegistrationToken> tokens_;
  BackendRandom random_;
};

}  // namespace quillet::backend
