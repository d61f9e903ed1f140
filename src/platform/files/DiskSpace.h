#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace quillet::platform {

// Free space of the file system that holds a directory, in bytes, as the
// phone reports it to an app (the space an unprivileged writer may use).
// Tests set a figure that every later reading gives instead, until cleared.
// Any thread.
class DiskSpace {
 public:
  // Free bytes for `directory`, or nullopt when it cannot be read (no such path).
  static std::optional<uint64_t> freeBytes(const std::filesystem::path& directory);
  // Makes freeBytes() answer `bytes` (nullopt: read the disk again).
  static void setOverride(std::optional<uint64_t> bytes);
};

}  // namespace quillet::platform
