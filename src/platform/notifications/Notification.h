#pragma once

#include <string>

#include "platform/value/Value.h"

namespace quillet::platform {

// What a posted notification carries: its name, the sender (an opaque
// identity, never dereferenced; may be null) and a user-info value (a
// dictionary or nil).
struct Notification {
  std::string name;
  const void* object = nullptr;
  Value userInfo;
};

}  // namespace quillet::platform
