#include "backend/registration/RegistrationTokenBook.h"

namespace quillet::backend {

std::string RegistrationTokenBook::tokenFor(const std::string& device, const std::string& appId,
                                            const std::string& sender, const std::string& scope) {
  std::lock_guard lock(mutex_);
  for (const RegistrationToken& held : tokens_) {
    if (held.device == device && held.appId == appId && held.sender == sender && held.scope == scope) {
      return held.token;
    }
  }
  std::string token = appId;
  token.append(":").append(random_.websafeText(140));
  tokens_.push_back({device, appId, sender, scope, token});
  return token;
}

size_t RegistrationTokenBook::remove(const std::string& device, const std::string& scope,
                                     const std::optional<std::string>& appId,
                                     const std::optional<std::string>& sender) {
  std::lock_guard lock(mutex_);
  return std::erase_if(tokens_, [&](const RegistrationToken& held) {
    return held.device == device && (scope == "*" || held.scope == scope) && (!appId || held.appId == *appId) &&
           (!sender || held.sender == *sender);
  });
}

std::vector<RegistrationToken> RegistrationTokenBook::tokens(const std::string& device) const {
  std::lock_guard lock(mutex_);
  std::vector<RegistrationToken> found;
  for (const RegistrationToken& held : tokens_) {
    if (held.device == device) found.push_back(held);
  }
  return found;
}

}  // namespace quillet::backend
