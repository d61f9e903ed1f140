#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/ui/ApplicationDelegate.h"
#include "platform/ui/LocalNotification.h"
#include "platform/ui/UiEvents.h"
#include "platform/ui/Window.h"

namespace quillet::platform {

enum class ApplicationState { Active, Inactive, Background, Terminated };

// A background task's identifier; kBackgroundTaskInvalid names none.
using BackgroundTaskIdentifier = uint64_t;
inline constexpr BackgroundTaskIdentifier kBackgroundTaskInvalid = 0;

const char* applicationStateName(ApplicationState state);

// The phone's application object: the icon badge, notification and push
// registration, opening URLs against the set of installed apps, local
// notifications, the application state, the window and the delegate.
//
// The program calls the operations of the phone (setApplicationIconBadgeNumber,
// openURL, ...); each posts its event to the stream. The driver plays the
// phone with the "phone side" operations (launch, becomeActive,
// deliverDeviceToken, ...), which move the state and call the delegate.
//
// There is a process-wide instance (sharedApplication) and tests build
// their own. Main run loop thread only.
class Application {
 public:
  // Posted on NotificationCenter::defaultCenter() by receiveMemoryWarning, object the application.
  static constexpr const char* kDidReceiveMemoryWarningNotification = "ApplicationDidReceiveMemoryWarning";
  // The life-cycle broadcasts, posted on the default centre with the
  // application as object, each right after the delegate's own call.
  static constexpr const char* kDidFinishLaunchingNotification = "UIApplicationDidFinishLaunchingNotification";
  static constexpr const char* kDidBecomeActiveNotification = "UIApplicationDidBecomeActiveNotification";
  static constexpr const char* kWillResignActiveNotification = "UIApplicationWillResignActiveNotification";
  static constexpr const char* kDidEnterBackgroundNotification = "UIApplicationDidEnterBackgroundNotification";
  static constexpr const char* kWillEnterForegroundNotification = "UIApplicationWillEnterForegroundNotification";
  static constexpr const char* kWillTerminateNotification = "UIApplicationWillTerminateNotification";

  explicit Application(std::shared_ptr<UiEvents> events = nullptr);

  static Application& sharedApplication();
  // Replaces the process-wide instance (the app driver installs its own).
  static void setSharedApplication(std::shared_ptr<Application> application);

  const std::shared_ptr<UiEvents>& events() const { return events_; }
  Window& window() { return *window_; }
  const std::shared_ptr<Window>& sharedWindow() const { return window_; }

  // The delegate is owned by the application, for the life of the process.
  void setDelegate(std::shared_ptr<ApplicationDelegate> delegate) { delegate_ = std::move(delegate); }
  const std::shared_ptr<ApplicationDelegate>& delegate() const { return delegate_; }

  int64_t applicationIconBadgeNumber() const { return badge_; }
  // Posts "badgeChanged" on every set, also to the same value.
  void setApplicationIconBadgeNumber(int64_t badge);

  // Notification settings as a bit set (badge 1, sound 2, alert 4).
  void registerUserNotificationSettings(int64_t types);
  int64_t notificationSettingsTypes() const { return settingsTypes_; }
  // Records the request; the token comes later from the driver.
  void registerForRemoteNotifications();
  void registerForRemoteNotificationTypes(int64_t types);
  void unregisterForRemoteNotifications();
  bool isRegisteredForRemoteNotifications() const { return registeredForRemote_; }

  // Installed apps by URL scheme ("chatapp"); http and https always open.
  void setInstalledSchemes(std::set<std::string> schemes) { installedSchemes_ = std::move(schemes); }
  void addInstalledScheme(const std::string& scheme) { installedSchemes_.insert(scheme); }
  // The app asks whether some app takes the URL's scheme: the question and
  // its answer are posted to the stream ("canOpenURL").
  bool canOpenURL(const std::string& url) const;
  // Opens the URL when some app takes its scheme: recorded, "urlOpened" posted, true.
  bool openURL(const std::string& url);
  const std::vector<std::string>& openedURLs() const { return openedURLs_; }

  ApplicationState applicationState() const { return state_; }

  // Background tasks: time the app asks for to finish work off screen. The
  // handler runs if the time runs out first (expireBackgroundTasks); the
  // app ends the task by its id. Ending an unknown or invalid id does
  // nothing. Each begin, end and expiry is posted to the event stream.
  BackgroundTaskIdentifier beginBackgroundTaskWithExpirationHandler(std::function<void()> handler);
  void endBackgroundTask(BackgroundTaskIdentifier identifier);
  size_t backgroundTaskCount() const { return backgroundTasks_.size(); }

  void scheduleLocalNotification(LocalNotification notification);
  const std::vector<LocalNotification>& scheduledLocalNotifications() const { return scheduled_; }
  void cancelAllLocalNotifications() { scheduled_.clear(); }

  // Phone side: launch (inactive, delegate's didFinishLaunching, window
  // shown), activity changes, and push registration outcomes and pushes.
  bool launch(const Value& launchOptions = Value());
  void becomeActive();
  void resignActive();
  void enterBackground();
  void enterForeground();
  // The app ends as the phone ends it: it resigns active and enters the
  // background when it is not there yet, then the delegate hears
  // applicationWillTerminate and the will-terminate broadcast goes out.
  void terminate();
  // The system takes back the background time: every task still running
  // has its expiration handler called (in the order they began).
  void expireBackgroundTasks();
  void deliverDeviceToken(const Value& deviceToken);
  void failRemoteNotificationRegistration(const Error& error);
  void deliverRemoteNotification(const Value& payload, bool fetchForm);
  // The system is short of memory: posts kDidReceiveMemoryWarningNotification
  // (caches empty themselves) and "memoryWarning" to the stream.
  void receiveMemoryWarning();

 private:
  std::shared_ptr<UiEvents> events_;
  std::shared_ptr<Window> window_;
  std::shared_ptr<ApplicationDelegate> delegate_;
  int64_t badge_ = 0;
  int64_t settingsTypes_ = 0;
  bool registeredForRemote_ = false;
  std::set<std::string> installedSchemes_;
  std::vector<std::string> openedURLs_;
  ApplicationState state_ = ApplicationState::Inactive;
  std::vector<LocalNotification> scheduled_;
  std::map<BackgroundTaskIdentifier, std::function<void()>> backgroundTasks_;
  BackgroundTaskIdentifier lastBackgroundTask_ = kBackgroundTaskInvalid;

  bool opens(const std::string& url) const;
  void moveTo(ApplicationState state);
  void broadcast(const char* name);
  void reportBackgroundTask(const char* what, BackgroundTaskIdentifier identifier);
};

}  // namespace quillet::platform
