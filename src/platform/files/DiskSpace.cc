#include "platform/files/DiskSpace.h"

#include <sys/statvfs.h>

#include <mutex>

namespace quillet::platform {
namespace {

std::mutex overrideMutex;
std::optional<uint64_t> overrideBytes;

}  // namespace

std::optional<uint64_t> DiskSpace::freeBytes(const std::filesystem::path& directory) {
  {
    std::lock_guard lock(overrideMutex);
    if (overrideBytes) return overrideBytes;
  }
  struct statvfs info {};
  if (::statvfs(directory.c_str(), &info) != 0) return std::nullopt;
  return static_cast<uint64_t>(info.f_bavail) * static_cast<uint64_t>(info.f_frsize);
}

void DiskSpace::setOverride(std::optional<uint64_t> bytes) {
  std::lock_guard lock(overrideMutex);
  overrideBytes = bytes;
}

}  // namespace quillet::platform
