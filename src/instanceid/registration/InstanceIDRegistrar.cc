#include "instanceid/registration/InstanceIDRegistrar.h"

#include "instanceid/checkin/InstanceIDAuthService.h"
#include "instanceid/support/InstanceIDError.h"

namespace quillet::instanceid {

InstanceIDRegistrar::InstanceIDRegistrar(std::shared_ptr<InstanceIDAuthService> authService,
                                         std::shared_ptr<const InstanceIDEnvironment> env)
    : authService_(std::move(authService)), env_(std::move(env)) {}

void InstanceIDRegistrar::stopAllRequests() {
  for (auto& [key, client] : registrationClientsByKeyMap_) client->stopFetching();
  authService_->stopCheckinRequest();
}

void InstanceIDRegistrar::fetchTokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                                         std::shared_ptr<InstanceIDKeyPair> keyPair,
                                                         const platform::Value::Dictionary& options,
                                                         InstanceIDTokenHandler handler) {
  if (!authService_->hasValidCheckinInfo()) {
    if (handler) handler(std::nullopt, errorWithInstanceIDErrorCode(InstanceIDErrorCodeNoValidCheckin));
    return;
  }
  fetchNewTokenWithAuthorizedEntity(authorizedEntity, scope, std::move(keyPair), options, std::move(handler));
}

void InstanceIDRegistrar::deleteTokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                                          std::shared_ptr<InstanceIDKeyPair> keyPair,
                                                          InstanceIDDeleteHandler handler) {
  if (!authService_->hasValidCheckinInfo()) {
    if (handler) handler(errorWithInstanceIDErrorCode(InstanceIDErrorCodeNoValidCheckin));
    return;
  }
  willDeleteTokenWithAuthorizedEntity(authorizedEntity, scope, std::move(keyPair), std::move(handler));
}

void InstanceIDRegistrar::willDeleteTokenWithAuthorizedEntity(const std::string& authorizedEntity,
                                                              const std::string& scope,
                                                              std::shared_ptr<InstanceIDKeyPair> keyPair,
                                                              InstanceIDDeleteHandler handler) {
  auto client = registrationClientForAuthorizedEntity(authorizedEntity, scope);
  if (client) {
    client->setOptionsForFetchingNewToken({});
  } else {
    client = createRegistrationClientWithAuthorizedEntity(authorizedEntity, scope, std::move(keyPair), {});
    addNewRegistrationClient(client);
  }
  if (client->inProgress()) {
    if (handler) handler(errorWithInstanceIDErrorCode(InstanceIDErrorCodeInProgress));
    return;
  }
  client->deleteTokenWithHandler(std::move(handler));
}

void InstanceIDRegistrar::fetchNewTokenWithAuthorizedEntity(const std::string& authorizedEntity,
                                                            const std::string& scope,
                                                            std::shared_ptr<InstanceIDKeyPair> keyPair,
                                                            const platform::Value::Dictionary& options,
                                                            InstanceIDTokenHandler handler) {
  auto client = registrationClientForAuthorizedEntity(authorizedEntity, scope);
  if (client) {
    client->setOptionsForFetchingNewToken(options);
  } else {
    client = createRegistrationClientWithAuthorizedEntity(authorizedEntity, scope, std::move(keyPair), options);
    addNewRegistrationClient(client);
  }
  if (client->inProgress()) {
    if (handler) handler(std::nullopt, errorWithInstanceIDErrorCode(InstanceIDErrorCodeInProgress));
    return;
  }
  client->fetchTokenWithHandler(std::move(handler));
}

std::shared_ptr<InstanceIDRegistrationClient> InstanceIDRegistrar::createRegistrationClientWithAuthorizedEntity(
    const std::string& authorizedEntity, const std::string& scope, std::shared_ptr<InstanceIDKeyPair> keyPair,
    const platform::Value::Dictionary& options) {
  auto client =
      std::make_shared<InstanceIDRegistrationClient>(authService_, authorizedEntity, scope, std::move(keyPair), env_);
  client->setOptionsForFetchingNewToken(options);
  return client;
}

std::shared_ptr<InstanceIDRegistrationClient> InstanceIDRegistrar::registrationClientForAuthorizedEntity(
    const std::string& authorizedEntity, const std::string& scope) const {
  const auto found = registrationClientsByKeyMap_.find(
      InstanceIDRegistrationClient::registrationClientKeyWithAuthorizedEntity(authorizedEntity, scope));
  return found == registrationClientsByKeyMap_.end() ? nullptr : found->second;
}

void InstanceIDRegistrar::addNewRegistrationClient(std::shared_ptr<InstanceIDRegistrationClient> client) {
  const std::string key = InstanceIDRegistrationClient::registrationClientKeyWithAuthorizedEntity(
      client->authorizedEntity(), client->scope());
  registrationClientsByKeyMap_[key] = std::move(client);
}

}  // namespace quillet::instanceid
