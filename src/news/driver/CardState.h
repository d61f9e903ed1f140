#pragma once

#include "platform/ui/Application.h"
#include "platform/value/Value.h"

namespace quillet::news {

// What the reader of the feed sees, in the driver's words, when the top
// screen is the feed: the card (title and its colour, body, posted-by line,
// medium: kind and URL or video id, header bar opacity), `count`, the list's
// size, the feed mode and title, the rows of the menu or options panel when
// one is open. Nil when the top screen is not the feed. Also the toast on
// screen, for any screen. Main thread only.
class CardState {
 public:
  static platform::Value feed(platform::Application& application);
  // {"text"} of the toast on screen, or nil.
  static platform::Value toast();
};

}  // namespace quillet::news
