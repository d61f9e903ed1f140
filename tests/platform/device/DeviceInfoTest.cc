#include "platform/device/DeviceInfo.h"

#include <gtest/gtest.h>

#include "platform/clock/Clock.h"
#include "platform/crypto/Uuid.h"
#include "platform/files/FileSystem.h"
#include "platform/text/DeviceLocale.h"
#include "support/TempDir.h"

namespace quillet::platform {
namespace {

TEST(DeviceInfoTest, TheVendorIdentifierLastsForTheInstallAndChangesWithAReinstall) {
  testing::TempDir dir;
  FileSystem files(dir.path());
  const std::string first = DeviceInfo::identifierForVendor(files);
  EXPECT_TRUE(isUuidString(first));
  EXPECT_EQ(DeviceInfo::identifierForVendor(FileSystem(dir.path())), first);
  ASSERT_TRUE(files.removeInstallData());
  EXPECT_NE(DeviceInfo::identifierForVendor(files), first);
}

TEST(DeviceInfoTest, UptimeFollowsTheClockAndTheOffsetFollowsTheZoneAndTheDate) {
  ManualClock clock(1'800'000'000.0, 1000.0);
  EXPECT_EQ(DeviceInfo::millisecondsSinceBoot(clock), 1'000'000);
  clock.advance(2.5);
  EXPECT_EQ(DeviceInfo::millisecondsSinceBoot(clock), 1'002'500);

  DeviceLocale::setTimeZoneId("Europe/Berlin");
  EXPECT_EQ(DeviceInfo::timeZoneOffsetMinutes(1'768'000'000.0), 60);   // January: standard time
  EXPECT_EQ(DeviceInfo::timeZoneOffsetMinutes(1'783'000'000.0), 120);  // July: summer time
  DeviceLocale::setTimeZoneId("America/St_Johns");
  EXPECT_EQ(DeviceInfo::timeZoneOffsetMinutes(1'768'000'000.0), -210);
  DeviceLocale::setTimeZoneId("UTC");
  EXPECT_EQ(DeviceInfo::timeZoneOffsetMinutes(1'768'000'000.0), 0);
  DeviceLocale::setTimeZoneId(std::nullopt);
}

}  // namespace
}  // namespace quillet::platform
