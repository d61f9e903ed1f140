#pragma once

#include <string>

#include "platform/value/Value.h"

namespace quillet::news {

// Draws the phone as short text for a person at a terminal: one line per
// driver event (toasts, alerts, screen changes, opened URLs, ...) and the
// screen on show: a header with the screen and its title, then the feed's
// card (title, posted-by line, body wrapped to the width, medium, position)
// and its open panel, or the labels and table rows of any other screen, and
// the alert on show. Never prints JSON. Pure; any thread.
class DemoRenderer {
 public:
  // One event as the driver prints it with --json ({"event": name, ...}):
  // its line, without a final '\n', or "" for events not worth a line.
  static std::string event(const platform::Value& event);

  // `snapshot` is platform::Snapshot::take's dictionary, `feed` is
  // CardState::feed (nil off the feed). Lines end in '\n'; none is wider
  // than `columns` except words that cannot be cut (URLs).
  static std::string screen(const platform::Value& snapshot, const platform::Value& feed, int columns);
};

}  // namespace quillet::news
