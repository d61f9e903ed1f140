#include "instanceid/checkin/InstanceIDDevice.h"

#include <sys/utsname.h>

namespace quillet::instanceid {

std::optional<std::string> InstanceIDDevice::modelVersion() {
  static const std::optional<std::string> model = []() -> std::optional<std::string> {
    struct utsname system {};
    if (uname(&system) != 0) return std::nullopt;
    return std::string(system.machine);
  }();
  return model;
}

}  // namespace quillet::instanceid
