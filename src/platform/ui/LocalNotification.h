#pragma once

#include <optional>
#include <string>

#include "platform/value/Value.h"

namespace quillet::platform {

// A notification the program schedules for the phone to show later. Plain data.
struct LocalNotification {
  std::string title;
  std::string body;
  std::string soundName;         // empty: silent
  std::optional<int64_t> badge;  // the icon badge it sets, if any
  std::string category;
  Value userInfo;                  // a dictionary, or nil
  std::optional<double> fireDate;  // seconds since 1970; none: at once

  // {"title", "body", "sound", "badge", "category", "userInfo", "fireDate"}, each when set.
  Value toValue() const;
};

}  // namespace quillet::platform
