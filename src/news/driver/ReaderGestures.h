#pragma once

#include <string>

#include "platform/ui/Application.h"
#include "platform/value/Error.h"

namespace quillet::news {

// The reader's gestures as the driver names them, on the top screen: swipes
// on the card, rows of the table on show, the check box of a row, the
// settings switches, scrolling. Each returns false with a clear error when
// it cannot be done (nothing on show, a row out of range, a hidden control).
// The application is held by reference. Main thread only.
class ReaderGestures {
 public:
  explicit ReaderGestures(platform::Application& application) : application_(application) {}

  // "left" or "right", on the card's swipe area.
  bool swipe(const std::string& direction, platform::Error* error);
  // Taps row ROW of the table on show.
  bool select(const std::string& row, platform::Error* error);
  // Taps the check box of row ROW of the table on show, scrolling it on show first.
  bool check(const std::string& row, platform::Error* error);
  // "night|hd|notification on|off".
  bool setSwitch(const std::string& argument, platform::Error* error);
  // Scrolls the table on show by ROWS rows (negative: up).
  bool scroll(const std::string& rows, platform::Error* error);

  // The name of the first table outlet of the top screen that a finger can reach, or "".
  std::string visibleTableName() const;

 private:
  platform::Application& application_;
};

}  // namespace quillet::news
