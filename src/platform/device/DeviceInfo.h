#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillet::platform {

class Clock;
class FileSystem;

// What the device says of itself: its model (the machine name), the system's
// name and version, and the arguments the process was started with. The
// process has one, set by the driver before launch. A plain value; current()
// and setCurrent() are thread-safe. The device's languages and time zone are
// DeviceLocale's.
struct DeviceInfo {
  std::string model = "Phone";
  std::string systemName = "PhoneOS";
  std::string systemVersion = "1.0";
  std::vector<std::string> arguments;

  static DeviceInfo current();
  static void setCurrent(DeviceInfo info);

  // The identifier for this app's vendor on this device: a UUID string made
  // on first use and kept in the install's Library, so it stays the same
  // across launches and changes when the app is deleted and installed again.
  static std::string identifierForVendor(const FileSystem& fileSystem);
  // Milliseconds since the device started, from the clock's monotonic time
  // (so a manual clock moves it).
  static int64_t millisecondsSinceBoot(const Clock& clock);
  // The local time zone's offset from UTC in minutes at `wallSeconds` (DeviceLocale's zone).
  static int timeZoneOffsetMinutes(double wallSeconds);
};

}  // namespace quillet::platform
