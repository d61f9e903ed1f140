#pragma once

#include "platform/value/Value.h"

namespace quillet::platform {

class Application;
class ViewController;

// What the reader sees now, as a Value dictionary:
//   "screen": the top screen's identifier, "title": its title,
//   "stack": the identifiers of the window's stack, bottom first,
//   "navigationBarHidden": for a screen inside a stack,
//   "outlets": {name: state} for every outlet of the top screen: its kind
//     and "hidden"; a hidden outlet (itself or below a hidden view) shows
//     only that, one on show adds its state (text, colours, image, title,
//     on, a table's visible rows with their labels and accessory, ...),
//   "alert": the alert on show {title, message, style, actions},
//   "badge", "state": the application's icon badge and state.
// A screen that was popped or replaced is not in it. Main run loop thread only.
class Snapshot {
 public:
  static Value take(Application& application);
  // The "outlets" dictionary of one screen.
  static Value outletsOf(const ViewController& screen);
};

}  // namespace quillet::platform
