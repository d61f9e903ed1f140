#include "platform/device/DeviceInfo.h"

#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <cmath>
#include <memory>
#include <mutex>

#include "platform/clock/Clock.h"
#include "platform/crypto/Uuid.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FileSystem.h"
#include "platform/support/SharedSlot.h"
#include "platform/text/DeviceLocale.h"

namespace quillet::platform {
namespace {

constexpr const char* kVendorIdentifierFile = "identifierForVendor";

SharedValue<DeviceInfo> currentInfo;

}  // namespace

DeviceInfo DeviceInfo::current() { return currentInfo.get(); }

void DeviceInfo::setCurrent(DeviceInfo info) { currentInfo.set(std::move(info)); }

std::string DeviceInfo::identifierForVendor(const FileSystem& fileSystem) {
  static std::mutex vendorMutex;
  std::lock_guard lock(vendorMutex);
  const auto path = fileSystem.cachesDirectory().parent_path() / kVendorIdentifierFile;
  if (auto stored = AtomicFile::read(path); stored && isUuidString(*stored)) return *stored;
  std::string identifier = uuidString();
  AtomicFile::write(path, identifier, nullptr, 0600);
  return identifier;
}

int64_t DeviceInfo::millisecondsSinceBoot(const Clock& clock) {
  return static_cast<int64_t>(std::floor(clock.monotonicSeconds() * 1000.0));
}

int DeviceInfo::timeZoneOffsetMinutes(double wallSeconds) {
  const std::string id = DeviceLocale::timeZoneId();
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(id)));
  int32_t raw = 0;
  int32_t daylight = 0;
  UErrorCode status = U_ZERO_ERROR;
  zone->getOffset(wallSeconds * 1000.0, false, raw, daylight, status);
  if (U_FAILURE(status)) return 0;
  return (raw + daylight) / 60000;
}

}  // namespace quillet::platform
