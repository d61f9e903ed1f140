#pragma once

#include "platform/ui/Application.h"
#include "platform/value/Value.h"

namespace quillet::news {

// What the content page on top shows, for the driver's "screen": the text
// page's title and text, the full story's address, load and overlay, the
// feedback form's texts, the hint and how far the view has moved up. Nil
// when no content page is on top. Main thread only.
struct PageState {
  static platform::Value of(platform::Application& application);
};

}  // namespace quillet::news
