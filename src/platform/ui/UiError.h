#pragma once

#include <string>

#include "platform/value/Error.h"

namespace quillet::platform {

// Errors of the ui facility: a driver action on a control that is missing,
// of the wrong kind, hidden or disabled, or an unknown screen identifier.
// The message is userInfo["NSLocalizedDescription"].
inline constexpr const char* kUiErrorDomain = "quillet.platform.ui";

enum class UiErrorCode : int64_t {
  NoSuchScreen = 1,    // unknown storyboard identifier
  NoScreen = 2,        // the window shows no screen
  NoSuchOutlet = 3,    // no outlet or subview by that name
  WrongKind = 4,       // the control cannot take this action
  NotInteractive = 5,  // hidden or disabled
  OutOfRange = 6,      // a row outside the table
  NoAlert = 7,         // no alert presented, or no action by that title
  BadPath = 8,         // a malformed driver path
};

// Stores the error in `out` when it is non-null; returns false for `return uiError(...)`.
inline bool uiError(Error* out, UiErrorCode code, const std::string& message) {
  if (out) {
    *out = Error::withDescription(kUiErrorDomain, static_cast<int64_t>(code), message);
  }
  return false;
}

}  // namespace quillet::platform
