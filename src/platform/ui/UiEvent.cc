#include "platform/ui/UiEvent.h"

namespace quillet::platform {

const char* UiEvent::kindName(Kind kind) {
  switch (kind) {
    case Kind::ScreenPushed:
      return "screenPushed";
    case Kind::ScreenPopped:
      return "screenPopped";
    case Kind::StackReplaced:
      return "stackReplaced";
    case Kind::ScreenReplaced:
      return "screenReplaced";
    case Kind::ScreenPresented:
      return "screenPresented";
    case Kind::ScreenDismissed:
      return "screenDismissed";
    case Kind::AlertShown:
      return "alertShown";
    case Kind::AlertDismissed:
      return "alertDismissed";
    case Kind::UrlOpened:
      return "urlOpened";
    case Kind::BadgeChanged:
      return "badgeChanged";
    case Kind::LocalNotificationScheduled:
      return "localNotificationScheduled";
    case Kind::NotificationSettingsRegistered:
      return "notificationSettingsRegistered";
    case Kind::RemoteNotificationsRegistered:
      return "remoteNotificationsRegistered";
    case Kind::Toast:
      return "toast";
    case Kind::MemoryWarning:
      return "memoryWarning";
    case Kind::OpenInMenuShown:
      return "openInMenuShown";
    case Kind::BackgroundTask:
      return "backgroundTask";
    case Kind::UrlQueried:
      return "canOpenURL";
    case Kind::TransitionAdded:
      return "transition";
  }
  return "unknown";
}

Value UiEvent::toValue() const {
  Value out = Value::dictionary({{"kind", Value(kindName(kind))}});
  if (!screen.empty()) out.set("screen", Value(screen));
  if (!previous.empty()) out.set("previous", Value(previous));
  if (animated) out.set("animated", Value(true));
  if (!text.empty()) out.set("text", Value(text));
  if (number != 0) out.set("number", Value(number));
  if (!info.isNil()) out.set("info", info);
  return out;
}

}  // namespace quillet::platform
