#pragma once

#include <functional>

#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::platform {

class Application;

// The two forms in which a push reaches the delegate.
enum class RemoteNotificationForm {
  Plain,            // didReceiveRemoteNotification
  FetchCompletion,  // didReceiveRemoteNotificationFetchCompletionHandler
};

// The program's side of the application's life: launch, activity changes,
// push registration and pushes. All optional. Called on the main run loop
// thread by the Application, when the driver (the phone) says so.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;
  // `launchOptions` is a dictionary, or nil; a launch from a push holds it
  // under "UIApplicationLaunchOptionsRemoteNotificationKey".
  virtual bool didFinishLaunchingWithOptions(Application&, const Value& /*launchOptions*/) { return true; }
  virtual void didRegisterForRemoteNotificationsWithDeviceToken(Application&, const Value& /*deviceToken*/) {}
  virtual void didFailToRegisterForRemoteNotificationsWithError(Application&, const Error&) {}
  virtual void didReceiveRemoteNotification(Application&, const Value& /*payload*/) {}
  // The background-fetch form; the completion takes the fetch result.
  virtual void didReceiveRemoteNotificationFetchCompletionHandler(Application&, const Value& /*payload*/,
                                                                  std::function<void(int)> /*completion*/) {}
  virtual void applicationWillResignActive(Application&) {}
  virtual void applicationDidEnterBackground(Application&) {}
  virtual void applicationWillEnterForeground(Application&) {}
  virtual void applicationDidBecomeActive(Application&) {}
  virtual void applicationWillTerminate(Application&) {}

  // Whether the delegate implements that form of push delivery, so that a
  // caller can choose as the phone does (the fetch form when it is there).
  // A delegate that overrides a form's operation says so here.
  virtual bool respondsToRemoteNotification(RemoteNotificationForm) const { return false; }
};

}  // namespace quillet::platform
