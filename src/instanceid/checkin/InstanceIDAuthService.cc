#include "instanceid/checkin/InstanceIDAuthService.h"

#include "instanceid/support/InstanceIDError.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {

InstanceIDAuthService::InstanceIDAuthService(std::shared_ptr<InstanceIDCheckinService> checkinService,
                                             std::shared_ptr<InstanceIDStore> store,
                                             std::shared_ptr<const InstanceIDEnvironment> env)
    : checkinService_(std::move(checkinService)), store_(std::move(store)), env_(std::move(env)) {}

InstanceIDAuthService::InstanceIDAuthService(std::shared_ptr<InstanceIDStore> store,
                                             std::shared_ptr<const InstanceIDEnvironment> env)
    : InstanceIDAuthService(
          std::make_shared<InstanceIDCheckinService>(std::weak_ptr<InstanceIDCheckinCache>(store), env), store, env) {}

bool InstanceIDAuthService::hasValidCheckinInfo() const {
  const auto preferences = checkinService_->checkinPreferences();
  return preferences && preferences->hasValidCheckinInfo(env_->nowMillis());
}

void InstanceIDAuthService::fetchCheckinInfoWithHandler(CheckinHandler handler) {
  if (*isCheckinInProgress_) {
    if (handler) handler(nullptr, errorWithInstanceIDErrorCode(InstanceIDErrorCodeInProgress));
    return;
  }
  if (hasValidCheckinInfo()) return;
  *isCheckinInProgress_ = true;
  checkinService_->checkinWithCompletion(
      [inProgress = isCheckinInProgress_, handler](std::shared_ptr<InstanceIDCheckinPreferences> preferences,
                                                   std::optional<platform::Error> error) {
        *inProgress = false;
        if (handler) handler(std::move(preferences), std::move(error));
      });
}

std::string InstanceIDAuthService::checkinAuthToken() const {
  const auto preferences = checkinService_->checkinPreferences();
  if (!preferences) return platform::format("%@:%@", platform::Value(), platform::Value());
  return platform::format("%@:%@", preferences->deviceID(), preferences->secretToken());
}

std::shared_ptr<InstanceIDCheckinPreferences> InstanceIDAuthService::checkinPreferences() const {
  return checkinService_->checkinPreferences();
}

void InstanceIDAuthService::stopCheckinRequest() { checkinService_->stopFetching(); }

std::optional<std::string> InstanceIDAuthService::cachedIIDAuthTokenForAuthorizedEntity(const std::string& entity) {
  const auto found = IIDAuthTokenBySenderID_.find(entity);
  if (found != IIDAuthTokenBySenderID_.end()) return found->second;
  auto token = store_->tokenWithAuthorizedEntity(entity, kAuthTokenScope);
  if (token) IIDAuthTokenBySenderID_[entity] = *token;
  return token;
}

void InstanceIDAuthService::saveIIDAuthToken(const std::string& token, const std::string& entity) {
  if (cachedIIDAuthTokenForAuthorizedEntity(entity) == token) return;
  store_->saveToken(token, entity, kAuthTokenScope);
}

}  // namespace quillet::instanceid
