#include "news/app/AppDelegate.h"

#include <algorithm>
#include <utility>

#include "news/app/AppKeys.h"
#include "news/store/NewsDatabaseFile.h"
#include "platform/log/Log.h"
#include "platform/ui/Application.h"
#include "platform/ui/NavigationController.h"
#include "platform/value/Format.h"

namespace quillet::news {

using platform::Log;
using platform::Value;

AppDelegate::AppDelegate(AppServices services, std::shared_ptr<const platform::FileSystem> fileSystem,
                         platform::UserDefaults& defaults, platform::NotificationCenter& notificationCenter,
                         std::shared_ptr<platform::Storyboard> storyboard)
    : services_(std::move(services)),
      fileSystem_(std::move(fileSystem)),
      defaults_(defaults),
      notificationCenter_(notificationCenter),
      storyboard_(std::move(storyboard)) {}

bool AppDelegate::didFinishLaunchingWithOptions(platform::Application& application, const Value& launchOptions) {
  // The window starts with the storyboard's initial screen, as the phone
  // loads the main storyboard before the delegate hears of the launch.
  if (!application.window().rootViewController() && storyboard_) {
    platform::Error error;
    if (auto initial = storyboard_->instantiateInitialViewController(&error)) {
      application.window().setRootViewController(std::move(initial));
    } else {
      Log::write("AppDelegate: " + error.description());
    }
  }

  NewsDatabaseFile(fileSystem_).copyDatabaseIfNeeded();

  const Value& push = launchOptions[kLaunchOptionsRemoteNotificationKey];
  if (!push.isNil()) handleRemoteNotifications(application, push);

  application.registerUserNotificationSettings(kNotificationTypes);
  application.registerForRemoteNotifications();

  registrationKey_ = kRegistrationCompletedNotification;
  messageKey_ = kMessageReceivedNotification;

  services_.context->configureWithError(nullptr);
  msgSenderID_ = services_.context->configuration().msgSenderID;

  MSGConfig msgConfig = MSGConfig::defaultConfig();
  msgConfig.setReceiverDelegate(std::static_pointer_cast<MSGReceiverDelegate>(shared_from_this()));
  services_.msgService->startWithConfig(msgConfig);

  std::weak_ptr<AppDelegate> weak = weak_from_this();
  registrationHandler_ = [weak](const std::optional<std::string>& token, const std::optional<platform::Error>& error) {
    if (auto self = weak.lock()) self->onRegistration(token, error);
  };
  return true;
}

void AppDelegate::didRegisterForRemoteNotificationsWithDeviceToken(platform::Application&, const Value& deviceToken) {
  InstanceIDConfig config = InstanceIDConfig::defaultConfig();
  config.setDelegate(std::static_pointer_cast<InstanceIDDelegate>(shared_from_this()));
  services_.instanceID->startWithConfig(config);

  registrationOptions_ = Value::dictionary({{"apns_token", deviceToken}, {"apns_sandbox", true}});
  requestToken();

  Log::write(platform::format("My token is: %@", deviceToken));
  const std::string cleaned = cleanDeviceToken(deviceToken);
  Log::write(platform::format("Device ..............................token: %@", cleaned));
  defaults_.setString(cleaned, kDeviceTokenKey);
}

std::string AppDelegate::cleanDeviceToken(const Value& deviceToken) {
  std::string text = platform::format("%@", deviceToken);
  std::erase_if(text, [](char c) { return c == '<' || c == '>' || c == ' '; });
  return text;
}

void AppDelegate::onTokenRefresh() {
  Log::write("The MSG registration token needs to be changed.");
  requestToken();
}

void AppDelegate::requestToken() {
  services_.instanceID->tokenWithAuthorizedEntity(msgSenderID_, kTokenScope, registrationOptions_,
                                                  registrationHandler_);
}

void AppDelegate::onRegistration(const std::optional<std::string>& token, const std::optional<platform::Error>& error) {
  if (token) {
    registrationToken_ = *token;
    Log::write(platform::format("Registration Token: %@", *token));
    defaults_.setString(*token, kDeviceIDKey);
    notificationCenter_.post(registrationKey_, nullptr, Value::dictionary({{"registrationToken", *token}}));
    return;
  }
  const platform::Error failure = error.value_or(platform::Error());
  Log::write(platform::format("%@", failure.description()));
  Log::write(platform::format("Registration to MSG failed with error: %@", failure.localizedDescription()));
  notificationCenter_.post(registrationKey_, nullptr, Value::dictionary({{"error", failure.localizedDescription()}}));
}

void AppDelegate::subscribeToTopic() {
  if (registrationToken_.empty() || !connectedToMSG_) return;
  std::weak_ptr<AppDelegate> weak = weak_from_this();
  services_.pubSub->subscribeWithToken(
      registrationToken_, kTopic, Value(), [weak](const std::optional<platform::Error>& error) {
        auto self = weak.lock();
        if (!self) return;
        if (!error) {
          self->subscribedToTopic_ = true;
          Log::write(platform::format("Subscribed to %@", kTopic));
        } else if (error->code == kAlreadySubscribedCode) {
          Log::write(platform::format("Already subscribed to %@", kTopic));
        } else {
          Log::write(platform::format("Subscription failed: %@", error->localizedDescription()));
        }
      });
}

void AppDelegate::applicationDidBecomeActive(platform::Application& application) {
  std::weak_ptr<AppDelegate> weak = weak_from_this();
  services_.msgService->connectWithHandler([weak](const std::optional<platform::Error>& error) {
    auto self = weak.lock();
    if (!self) return;
    if (error) {
      Log::write(platform::format("Could not connect to MSG: %@", error->localizedDescription()));
      return;
    }
    self->connectedToMSG_ = true;
    Log::write("Connected to MSG");
    self->subscribeToTopic();
  });
  application.setApplicationIconBadgeNumber(0);
  defaults_.setInteger(0, kBadgeCountKey);
}

void AppDelegate::applicationDidEnterBackground(platform::Application& application) {
  badgeCount_ = defaults_.integerForKey(kBadgeCountKey);
  application.setApplicationIconBadgeNumber(badgeCount_);
}

void AppDelegate::countBadge() {
  if (defaults_.integerForKey(kBadgeCountKey) != 0) {
    badgeCount_ = defaults_.integerForKey(kBadgeCountKey) + 1;
  } else {
    badgeCount_ = 1;
  }
  defaults_.setInteger(badgeCount_, kBadgeCountKey);
}

void AppDelegate::didReceiveRemoteNotification(platform::Application& application, const Value& payload) {
  Log::write(platform::format("%@", payload));
  countBadge();
  application.setApplicationIconBadgeNumber(badgeCount_);
  notificationCenter_.post(kReceivedNotification);
}

void AppDelegate::didReceiveRemoteNotificationFetchCompletionHandler(platform::Application& application,
                                                                     const Value& payload, std::function<void(int)>) {
  // The completion is deliberately never called.
  Log::write(platform::format("Notification received: %@", payload));
  services_.msgService->appDidReceiveMessage(payload);
  countBadge();
  handleRemoteNotifications(application, payload);
  application.setApplicationIconBadgeNumber(badgeCount_);
  notificationCenter_.post(kReceivedNotification);
}

void AppDelegate::handleRemoteNotifications(platform::Application& application, const Value& payload) {
  defaults_.setString(platform::format("%@", payload["post_id"]), kNewsIDKey);
  (void)application.applicationState();  // read, as the phone's code did; it changes nothing
  if (!storyboard_) return;
  platform::Error error;
  auto home = storyboard_->instantiateViewControllerWithIdentifier(kHomeScreen, &error);
  if (!home) {
    Log::write("AppDelegate: " + error.description());
    return;
  }
  application.window().setRootViewController(std::make_shared<platform::NavigationController>(std::move(home)));
}

void AppDelegate::didFailToRegisterForRemoteNotificationsWithError(platform::Application&,
                                                                   const platform::Error& error) {
  Log::write(platform::format("Error in registration. Error: %@", error.description()));
}

}  // namespace quillet::news
