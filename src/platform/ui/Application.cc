#include "platform/ui/Application.h"

#include "platform/notifications/NotificationCenter.h"
#include "platform/support/SharedSlot.h"
#include "platform/text/Url.h"

namespace quillet::platform {

const char* applicationStateName(ApplicationState state) {
  switch (state) {
    case ApplicationState::Active:
      return "active";
    case ApplicationState::Inactive:
      return "inactive";
    case ApplicationState::Background:
      return "background";
    case ApplicationState::Terminated:
      return "terminated";
  }
  return "inactive";
}

Application::Application(std::shared_ptr<UiEvents> events)
    : events_(events ? std::move(events) : std::make_shared<UiEvents>()), window_(std::make_shared<Window>(events_)) {}

Application& Application::sharedApplication() {
  return *SharedSlot<Application>::get([] { return std::make_shared<Application>(); });
}

void Application::setSharedApplication(std::shared_ptr<Application> application) {
  SharedSlot<Application>::set(std::move(application));
}

void Application::setApplicationIconBadgeNumber(int64_t badge) {
  UiEvent event;
  event.kind = UiEvent::Kind::BadgeChanged;
  event.number = badge;
  event.info = Value(badge_);
  badge_ = badge;
  events_->emit(std::move(event));
}

void Application::registerUserNotificationSettings(int64_t types) {
  settingsTypes_ = types;
  UiEvent event;
  event.kind = UiEvent::Kind::NotificationSettingsRegistered;
  event.number = types;
  events_->emit(std::move(event));
}

void Application::registerForRemoteNotifications() {
  registeredForRemote_ = true;
  UiEvent event;
  event.kind = UiEvent::Kind::RemoteNotificationsRegistered;
  event.number = 1;
  events_->emit(std::move(event));
}

void Application::registerForRemoteNotificationTypes(int64_t types) {
  settingsTypes_ = types;
  registerForRemoteNotifications();
}

void Application::unregisterForRemoteNotifications() {
  registeredForRemote_ = false;
  UiEvent event;
  event.kind = UiEvent::Kind::RemoteNotificationsRegistered;
  event.number = 0;
  events_->emit(std::move(event));
}

bool Application::opens(const std::string& url) const {
  auto parsed = Url::parse(url);
  if (!parsed) return false;
  const auto& scheme = parsed->scheme();
  return scheme == "http" || scheme == "https" || installedSchemes_.count(scheme) != 0;
}

bool Application::canOpenURL(const std::string& url) const {
  const bool answer = opens(url);
  UiEvent event;
  event.kind = UiEvent::Kind::UrlQueried;
  event.text = url;
  event.info = Value(answer);
  events_->emit(std::move(event));
  return answer;
}

bool Application::openURL(const std::string& url) {
  if (!opens(url)) return false;
  openedURLs_.push_back(url);
  UiEvent event;
  event.kind = UiEvent::Kind::UrlOpened;
  event.text = url;
  events_->emit(std::move(event));
  return true;
}

void Application::scheduleLocalNotification(LocalNotification notification) {
  UiEvent event;
  event.kind = UiEvent::Kind::LocalNotificationScheduled;
  event.text = notification.body;
  event.info = notification.toValue();
  scheduled_.push_back(std::move(notification));
  events_->emit(std::move(event));
}

bool Application::launch(const Value& launchOptions) {
  state_ = ApplicationState::Inactive;
  bool launched = delegate_ ? delegate_->didFinishLaunchingWithOptions(*this, launchOptions) : true;
  window_->makeKeyAndVisible();
  broadcast(kDidFinishLaunchingNotification);
  return launched;
}

void Application::becomeActive() {
  moveTo(ApplicationState::Active);
  if (delegate_) delegate_->applicationDidBecomeActive(*this);
  broadcast(kDidBecomeActiveNotification);
}

void Application::resignActive() {
  moveTo(ApplicationState::Inactive);
  if (delegate_) delegate_->applicationWillResignActive(*this);
  broadcast(kWillResignActiveNotification);
}

void Application::enterBackground() {
  if (state_ == ApplicationState::Active) resignActive();
  moveTo(ApplicationState::Background);
  if (delegate_) delegate_->applicationDidEnterBackground(*this);
  broadcast(kDidEnterBackgroundNotification);
}

void Application::enterForeground() {
  moveTo(ApplicationState::Inactive);
  if (delegate_) delegate_->applicationWillEnterForeground(*this);
  broadcast(kWillEnterForegroundNotification);
}

void Application::terminate() {
  if (state_ == ApplicationState::Terminated) return;
  if (state_ != ApplicationState::Background) enterBackground();
  if (delegate_) delegate_->applicationWillTerminate(*this);
  broadcast(kWillTerminateNotification);
  moveTo(ApplicationState::Terminated);
}

void Application::moveTo(ApplicationState state) { state_ = state; }

void Application::broadcast(const char* name) { NotificationCenter::defaultCenter().post(name, this); }

BackgroundTaskIdentifier Application::beginBackgroundTaskWithExpirationHandler(std::function<void()> handler) {
  const BackgroundTaskIdentifier identifier = ++lastBackgroundTask_;
  backgroundTasks_.emplace(identifier, std::move(handler));
  reportBackgroundTask("began", identifier);
  return identifier;
}

void Application::endBackgroundTask(BackgroundTaskIdentifier identifier) {
  if (backgroundTasks_.erase(identifier) == 0) return;
  reportBackgroundTask("ended", identifier);
}

void Application::expireBackgroundTasks() {
  // A handler ends its own task (and may end others), so the list is read anew each time.
  std::vector<BackgroundTaskIdentifier> running;
  for (const auto& [identifier, handler] : backgroundTasks_) running.push_back(identifier);
  for (BackgroundTaskIdentifier identifier : running) {
    auto found = backgroundTasks_.find(identifier);
    if (found == backgroundTasks_.end()) continue;
    reportBackgroundTask("expired", identifier);
    std::function<void()> handler = found->second;
    if (handler) handler();
  }
}

void Application::reportBackgroundTask(const char* what, BackgroundTaskIdentifier identifier) {
  UiEvent event;
  event.kind = UiEvent::Kind::BackgroundTask;
  event.text = what;
  event.number = static_cast<int64_t>(identifier);
  events_->emit(std::move(event));
}

void Application::deliverDeviceToken(const Value& deviceToken) {
  if (delegate_) delegate_->didRegisterForRemoteNotificationsWithDeviceToken(*this, deviceToken);
}

void Application::failRemoteNotificationRegistration(const Error& error) {
  if (delegate_) delegate_->didFailToRegisterForRemoteNotificationsWithError(*this, error);
}

void Application::deliverRemoteNotification(const Value& payload, bool fetchForm) {
  if (!delegate_) return;
  if (fetchForm) {
    delegate_->didReceiveRemoteNotificationFetchCompletionHandler(*this, payload, [](int) {});
  } else {
    delegate_->didReceiveRemoteNotification(*this, payload);
  }
}

void Application::receiveMemoryWarning() {
  NotificationCenter::defaultCenter().post(kDidReceiveMemoryWarningNotification, this);
  UiEvent event;
  event.kind = UiEvent::Kind::MemoryWarning;
  events_->emit(std::move(event));
}

}  // namespace quillet::platform
