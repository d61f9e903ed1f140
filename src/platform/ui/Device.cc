#include "platform/ui/Device.h"

namespace quillet::platform {

Device& Device::current() {
  static Device device;
  return device;
}

}  // namespace quillet::platform
