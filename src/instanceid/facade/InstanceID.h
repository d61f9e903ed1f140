#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "instanceid/facade/InstanceIDConfig.h"
#include "instanceid/facade/InstanceIDDelegate.h"
#include "instanceid/registration/InstanceIDCommandHandler.h"
#include "instanceid/registration/InstanceIDRegistrationClient.h"
#include "instanceid/support/InstanceIDEnvironment.h"
#include "platform/notifications/NotificationCenter.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::instanceid {

class InstanceIDCheckinPreferences;
class InstanceIDKeyPair;
class InstanceIDKeyPairStore;
class InstanceIDTokenManager;

// The subsystem's face towards the app and the messaging client: an
// instance identity, tokens for (authorized entity, scope), their deletion,
// and word when tokens must be fetched again. Called on the main queue;
// every handler given to it is called on the main queue. Key loading and
// identity calculation run on the global queue. Until startWithConfig the
// requests answer 1005.
class InstanceID : public InstanceIDCommandHandler, public std::enable_shared_from_this<InstanceID> {
 public:
  using TokenHandler = InstanceIDTokenHandler;
  using DeleteHandler = InstanceIDDeleteHandler;
  using IDHandler =
      std::function<void(const std::optional<std::string>& identity, const std::optional<platform::Error>& error)>;
  using CheckinHandler = std::function<void(std::shared_ptr<InstanceIDCheckinPreferences> preferences,
                                            const std::optional<platform::Error>& error)>;
  using KeyPairHandler =
      std::function<void(std::shared_ptr<InstanceIDKeyPair> keyPair, const std::optional<platform::Error>& error)>;

  // The name under which the messaging client posts Instance ID messages
  // (the message's data as the notification's user info).
  static constexpr const char* kMSGNotificationName = "com.stikri.msg/notification/iid";

  // The process-wide facade over InstanceIDEnvironment::standard(); never destroyed.
  static std::shared_ptr<InstanceID> sharedInstance();
  // A facade of its own (tests); make it with std::make_shared.
  explicit InstanceID(std::shared_ptr<const InstanceIDEnvironment> env);
  ~InstanceID() override;
  InstanceID(const InstanceID&) = delete;
  InstanceID& operator=(const InstanceID&) = delete;

  // Sets the log level, builds the token manager (stores, migrations,
  // registrar) and the key pair store, takes the delegate, listens for the
  // messaging channel and hears the commands inside tokens. Call once.
  void startWithConfig(const InstanceIDConfig& config);

  // `options`: a dictionary ("apns_token" bytes, "apns_sandbox" boolean) or nil.
  void tokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                 const platform::Value& options, TokenHandler handler);
  void deleteTokenWithAuthorizedEntity(const std::string& authorizedEntity, const std::string& scope,
                                       DeleteHandler handler);
  void getIDWithHandler(IDHandler handler);
  // Deletes all tokens (locally and on the server), then the key pair.
  void deleteIDWithHandler(DeleteHandler handler);
  void stopAllRequests();

  // Commands: "SYNC" inside a token, then a refresh after 2 seconds;
  // "RST" inside a token, then a reset after 2 seconds.
  void notifyTokenRefresh() override;
  void notifyIdentityLost() override;
  void handleTokenRefreshWithDelayInSeconds(double delaySeconds);
  void handleCommandResetWithDelayInSeconds(double delaySeconds);
  void handleCommandResetFullWithDelayInSeconds(double delaySeconds);
  void handleRefreshMessage(const std::string& command, const std::string& subtype);
  void invokeTokenRefreshCallbackWithDelayInSeconds(double delaySeconds);
  // A message of the messaging channel.
  void didReceiveMSGMessage(const platform::Notification& notification);

  // The allowed option keys are "apns_sandbox" and, unless registration
  // without an APNs token is allowed, "apns_token"; values are strings or
  // numbers. No options at all pass.
  static bool verifyNewTokenOptions(const platform::Value& options, const InstanceIDConfig& config);
  // The options with a bytes "apns_token" as text: "s_" (sandbox) or "p_",
  // then two lower-case hexadecimal digits a byte. Others as they are.
  static platform::Value replaceAPNSDataWithString(const platform::Value& options);
  // 30 seconds: the wait after "check-in in progress".
  static double waitIntervalForCheckinRefresh() { return 30.0; }

  // Each posts the call to the main queue (a null handler is skipped).
  static void asyncInvokeGetTokenHandler(TokenHandler handler, const std::optional<std::string>& token,
                                         const std::optional<platform::Error>& error);
  static void asyncInvokeDeleteTokenHandler(DeleteHandler handler, const std::optional<platform::Error>& error);
  static void asyncInvokeGetIDHandler(IDHandler handler, const std::optional<std::string>& identity,
                                      const std::optional<platform::Error>& error);
  static void asyncInvokeDeleteIDHandler(DeleteHandler handler, const std::optional<platform::Error>& error);

  const std::shared_ptr<InstanceIDTokenManager>& tokenManager() const { return tokenManager_; }
  const std::shared_ptr<InstanceIDKeyPairStore>& keyPairStore() const { return keyPairStore_; }

 private:
  void fetchCheckinInfoWithHandler(CheckinHandler handler);
  // Loads (or makes) the key pair on the global queue; the handler runs on the main queue.
  void asyncLoadKeyPairWithHandler(KeyPairHandler handler);
  bool allowsMissingAPNSToken() const;

  std::shared_ptr<const InstanceIDEnvironment> env_;
  std::optional<InstanceIDConfig> config_;
  std::shared_ptr<InstanceIDTokenManager> tokenManager_;
  std::shared_ptr<InstanceIDKeyPairStore> keyPairStore_;
  std::weak_ptr<InstanceIDDelegate> refreshTokenDelegate_;  // not owned
  platform::NotificationCenter::ObserverToken observer_ = 0;
};

}  // namespace quillet::instanceid
