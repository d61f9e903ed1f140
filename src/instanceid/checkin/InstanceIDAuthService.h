#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "instanceid/checkin/InstanceIDCheckinService.h"
#include "instanceid/store/InstanceIDStore.h"
#include "instanceid/support/InstanceIDEnvironment.h"

namespace quillet::instanceid {

// The device credential for the registration layer: whether it is fresh,
// one check-in at a time, the "Authorization" text, and the per-entity auth
// tokens the server hands with registrations (scope "iid-all"). Used from
// the main queue; the check-in handler runs on the check-in service's queue.
class InstanceIDAuthService {
 public:
  using CheckinHandler = std::function<void(std::shared_ptr<InstanceIDCheckinPreferences> preferences,
                                            std::optional<platform::Error> error)>;

  static constexpr const char* kAuthTokenScope = "iid-all";

  InstanceIDAuthService(std::shared_ptr<InstanceIDCheckinService> checkinService,
                        std::shared_ptr<InstanceIDStore> store, std::shared_ptr<const InstanceIDEnvironment> env);
  // Makes the check-in service over `store`.
  InstanceIDAuthService(std::shared_ptr<InstanceIDStore> store, std::shared_ptr<const InstanceIDEnvironment> env);

  bool hasValidCheckinInfo() const;
  // Error 5 at once when a check-in runs; nothing at all (no call) when the
  // credential is still valid; else one check-in whose outcome goes to `handler`.
  void fetchCheckinInfoWithHandler(CheckinHandler handler);
  // "<deviceID>:<secretToken>".
  std::string checkinAuthToken() const;
  std::shared_ptr<InstanceIDCheckinPreferences> checkinPreferences() const;
  void stopCheckinRequest();

  std::optional<std::string> cachedIIDAuthTokenForAuthorizedEntity(const std::string& entity);
  // Stores a changed token; the in-memory table keeps the old one until restart.
  void saveIIDAuthToken(const std::string& token, const std::string& entity);

  bool isCheckinInProgress() const { return *isCheckinInProgress_; }
  const std::shared_ptr<InstanceIDCheckinService>& checkinService() const { return checkinService_; }

  bool allowMissingAPNSToken = false;

 private:
  std::shared_ptr<InstanceIDCheckinService> checkinService_;
  std::shared_ptr<InstanceIDStore> store_;
  std::shared_ptr<const InstanceIDEnvironment> env_;
  // Shared with the check-in completion, which may outlive this object.
  std::shared_ptr<std::atomic<bool>> isCheckinInProgress_ = std::make_shared<std::atomic<bool>>(false);
  std::map<std::string, std::string> IIDAuthTokenBySenderID_;
};

}  // namespace quillet::instanceid
