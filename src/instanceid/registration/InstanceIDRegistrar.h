#pragma once

#include <map>
#include <memory>
#include <string>

#include "instanceid/registration/InstanceIDRegistrationClient.h"
#include "instanceid/support/InstanceIDEnvironment.h"
#include "platform/value/Value.h"

namespace quillet::instanceid {

class InstanceIDAuthService;
class InstanceIDKeyPair;

// Owns one registration client per (authorized entity, scope), made on first
// use and kept for the registrar's life, and refuses work without a valid
// check-in (error 501). A request of a client that is still running is
// refused with error 5. Used on the main queue; handlers are called as the
// client calls them (see InstanceIDRegistrationClient).
class InstanceIDRegistrar {
 public:
  // `authService` is shared with the token manager.
  InstanceIDRegistrar(std::shared_ptr<InstanceIDAuthService> authService,
                      std::shared_ptr<const InstanceIDEnvironment> env);

  // Stops every client, then the check-in request.
  void stopAllRequests();
  void fetchTokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                      std::shared_ptr<InstanceIDKeyPair> keyPair,
                                      const platform::Value::Dictionary& options, InstanceIDTokenHandler handler);
  void deleteTokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                       std::shared_ptr<InstanceIDKeyPair> keyPair, InstanceIDDeleteHandler handler);

  const std::shared_ptr<InstanceIDAuthService>& authService() const { return authService_; }
  // The client of (entity, scope), or null.
  std::shared_ptr<InstanceIDRegistrationClient> registrationClientForAuthorizedEntity(
      const std::string& authorizedEntity, const std::string& scope) const;

 private:
  void willDeleteTokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                           std::shared_ptr<InstanceIDKeyPair> keyPair, InstanceIDDeleteHandler handler);
  void fetchNewTokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                         std::shared_ptr<InstanceIDKeyPair> keyPair,
                                         const platform::Value::Dictionary& options, InstanceIDTokenHandler handler);
  std::shared_ptr<InstanceIDRegistrationClient> createRegistrationClientWithAuthorizedEntity(
      const std::string& authorizedEntity, const std::string& scope, std::shared_ptr<InstanceIDKeyPair> keyPair,
      const platform::Value::Dictionary& options);
  void addNewRegistrationClient(std::shared_ptr<InstanceIDRegistrationClient> client);

  std::shared_ptr<InstanceIDAuthService> authService_;
  std::shared_ptr<const InstanceIDEnvironment> env_;
  std::map<std::string, std::shared_ptr<InstanceIDRegistrationClient>> registrationClientsByKeyMap_;
};

}  // namespace quillet::instanceid
