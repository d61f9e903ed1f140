#pragma once

#include <cstdint>
#include <string>

#include "platform/value/Value.h"

namespace quillet::platform {

// One thing that happened on the phone's screen or to the application
// object, as a driver hears it. Plain data.
struct UiEvent {
  enum class Kind {
    ScreenPushed,                    // screen: pushed; previous: the screen below it
    ScreenPopped,                    // screen: popped; previous: the screen now on top
    StackReplaced,                   // a stack set anew; screen: new top; previous: old top; info: the stack
    ScreenReplaced,                  // the window's root replaced; screen: new top; previous: old top; info: the stack
    ScreenPresented,                 // screen: presented; previous: the presenter
    ScreenDismissed,                 // screen: dismissed; previous: the presenter
    AlertShown,                      // screen: the presenter; text: title; info: {message, style, actions}
    AlertDismissed,                  // screen: the presenter; text: title
    UrlOpened,                       // text: the URL
    BadgeChanged,                    // number: the new badge; info: the old badge
    LocalNotificationScheduled,      // text: body; info: the notification
    NotificationSettingsRegistered,  // number: the types
    RemoteNotificationsRegistered,   // number: 1 registered, 0 unregistered
    Toast,                           // text: the toast's text
    MemoryWarning,                   // the application received a memory warning
    BackgroundTask,                  // text: "began", "ended" or "expired"; number: the task's id
    UrlQueried,                      // the app asked canOpenURL; text: the URL; info: the answer
    TransitionAdded,  // screen: the view's name; text: the type; info: {subtype, duration, timingFunction}
    OpenInMenuShown,  // screen: the view it is shown from; text: the file URL; info: {url, UTI, rect: {x, y, width,
                      // height}}
  };

  Kind kind = Kind::Toast;
  std::string screen;
  std::string previous;
  bool animated = false;
  std::string text;
  int64_t number = 0;
  Value info;

  static UiEvent toast(std::string text) {
    UiEvent event;
    event.kind = Kind::Toast;
    event.text = std::move(text);
    return event;
  }

  // {"kind": kindName, and each field that is set}.
  Value toValue() const;
  static const char* kindName(Kind kind);
};

}  // namespace quillet::platform
