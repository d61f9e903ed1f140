#pragma once

#include <string>

#include "platform/ui/Application.h"
#include "platform/value/Error.h"

namespace quillet::news {

// The driver's hand on the content pages, the sharing and the player, on
// the top screen. Each returns false with a clear error when it cannot be
// done (no such field, the wrong screen, a bad argument). The application
// is held by reference. Main thread only.
class PageGestures {
 public:
  explicit PageGestures(platform::Application& application) : application_(application) {}

  // "FIELD TEXT": types TEXT (the rest of the line, maybe empty) over the field's content.
  bool type(const std::string& argument, platform::Error* error);
  // The finger goes into the field (begin) or the field loses the keyboard.
  // The keyboard's Return key in a text field or box.
  bool pressReturn(const std::string& field, platform::Error* error);
  bool edit(const std::string& field, bool begin, platform::Error* error);
  // The feed's target panel, as a button of tag TAG would send it.
  bool share(const std::string& tag, platform::Error* error);
  // "HOST DATA": the page in the first web view of the top screen navigates
  // to "inlineplayer://HOST?data=DATA" (no query when DATA is missing), as
  // the player's page does to report an event.
  bool pageEvent(const std::string& argument, platform::Error* error);
  // The reader closes the system's share sheet or social composer on show.
  bool closeSheet(platform::Error* error);
  // The reader ends the mail composer on show: "sent", "saved", "cancelled" or "failed".
  bool finishMail(const std::string& result, platform::Error* error);

 private:
  platform::Application& application_;
};

}  // namespace quillet::news
