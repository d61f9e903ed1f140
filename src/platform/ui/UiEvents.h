#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>

#include "platform/ui/UiEvent.h"

namespace quillet::platform {

// The stream of UI events a driver subscribes to. Events are delivered
// synchronously, on the main run loop thread, to every subscriber in the
// order they subscribed. An event raised while another is being delivered
// (a subscriber that acts on the screen) waits until every subscriber has
// heard the first, so all subscribers hear all events in the order they
// happened.
class UiEvents {
 public:
  using Subscriber = std::function<void(const UiEvent&)>;
  using Token = uint64_t;  // 0 is never issued

  Token subscribe(Subscriber subscriber);
  // Unknown tokens are ignored; an unsubscribed subscriber hears nothing more.
  void unsubscribe(Token token);
  void emit(UiEvent event);

 private:
  std::map<Token, Subscriber> subscribers_;
  Token next_ = 1;
  std::deque<UiEvent> pending_;
  bool delivering_ = false;
};

}  // namespace quillet::platform
