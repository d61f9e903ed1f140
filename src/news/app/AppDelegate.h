#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "news/services/AppServices.h"
#include "news/services/InstanceIDConfig.h"
#include "news/services/MSGConfig.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/files/FileSystem.h"
#include "platform/notifications/NotificationCenter.h"
#include "platform/ui/ApplicationDelegate.h"
#include "platform/ui/Storyboard.h"

namespace quillet::news {

// The shell: at launch copies the packaged database, registers for pushes,
// configures and starts the services; it keeps the icon badge, the device
// token and the registration token, connects messaging when the app becomes
// active and subscribes to "/topics/global" after a successful connect; a
// push opens a fresh feed on its story.
//
// Made with std::make_shared (the token handler holds it weakly) and owned by
// the Application for the life of the process. The defaults store and the
// notification centre are held by reference and must outlive it. Main thread.
class AppDelegate : public platform::ApplicationDelegate,
                    public InstanceIDDelegate,
                    public MSGReceiverDelegate,
                    public std::enable_shared_from_this<AppDelegate> {
 public:
  static constexpr const char* kTopic = "/topics/global";
  static constexpr const char* kTokenScope = "MSG";
  static constexpr int64_t kNotificationTypes = 7;  // badge, sound and alert
  static constexpr int64_t kAlreadySubscribedCode = 3001;

  AppDelegate(AppServices services, std::shared_ptr<const platform::FileSystem> fileSystem,
              platform::UserDefaults& defaults, platform::NotificationCenter& notificationCenter,
              std::shared_ptr<platform::Storyboard> storyboard);

  // ApplicationDelegate.
  bool didFinishLaunchingWithOptions(platform::Application& application, const platform::Value& launchOptions) override;
  void didRegisterForRemoteNotificationsWithDeviceToken(platform::Application& application,
                                                        const platform::Value& deviceToken) override;
  void didFailToRegisterForRemoteNotificationsWithError(platform::Application& application,
                                                        const platform::Error& error) override;
  void didReceiveRemoteNotification(platform::Application& application, const platform::Value& payload) override;
  void didReceiveRemoteNotificationFetchCompletionHandler(platform::Application& application,
                                                          const platform::Value& payload,
                                                          std::function<void(int)> completion) override;
  void applicationDidEnterBackground(platform::Application& application) override;
  void applicationDidBecomeActive(platform::Application& application) override;
  // Both push forms are implemented.
  bool respondsToRemoteNotification(platform::RemoteNotificationForm) const override { return true; }

  // InstanceIDDelegate: asks for the token again with the stored options.
  void onTokenRefresh() override;

  // Stores the push's "post_id" under "NewsID" and makes a new "HomeVC" the
  // root of a new navigation stack in the window.
  void handleRemoteNotifications(platform::Application& application, const platform::Value& payload);
  // Subscribes to "/topics/global" when there is a token and a connection.
  void subscribeToTopic();

  // The device token's text form ("<0a1b2c3d 0e>") without "<", ">" and " ".
  static std::string cleanDeviceToken(const platform::Value& deviceToken);

  int64_t badgeCount() const { return badgeCount_; }
  bool subscribedToTopic() const { return subscribedToTopic_; }
  bool connectedToMSG() const { return connectedToMSG_; }
  const std::string& registrationToken() const { return registrationToken_; }
  const std::string& msgSenderID() const { return msgSenderID_; }
  const platform::Value& registrationOptions() const { return registrationOptions_; }

 private:
  void requestToken();
  void onRegistration(const std::optional<std::string>& token, const std::optional<platform::Error>& error);
  // Counts one push in the field and the store.
  void countBadge();

  AppServices services_;
  std::shared_ptr<const platform::FileSystem> fileSystem_;
  platform::UserDefaults& defaults_;
  platform::NotificationCenter& notificationCenter_;
  std::shared_ptr<platform::Storyboard> storyboard_;

  int64_t badgeCount_ = 0;
  bool subscribedToTopic_ = false;
  bool connectedToMSG_ = false;
  InstanceIDService::TokenHandler registrationHandler_;
  std::string registrationToken_;
  std::string registrationKey_;
  std::string messageKey_;
  std::string msgSenderID_;
  platform::Value registrationOptions_;
};

}  // namespace quillet::news
