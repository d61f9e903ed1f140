#pragma once

#include <optional>
#include <string>

namespace quillet::instanceid {

// The hardware this program runs on, as check-in reports it.
class InstanceIDDevice {
 public:
  // The machine field of uname() (such as "x86_64"), read once per process;
  // nullopt when uname() fails. Thread-safe.
  static std::optional<std::string> modelVersion();
};

}  // namespace quillet::instanceid
