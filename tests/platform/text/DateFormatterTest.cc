#include "platform/text/DateFormatter.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/text/DeviceLocale.h"

namespace quillet::platform {
namespace {

// 2016-01-01 20:30:00 UTC.
constexpr double kNewYearEvening = 1451680200.0;

TEST(DateFormatterTest, FormatsInTheGivenZoneAndLocale) {
  auto utc = DateFormatter::create("yyyy-MM-dd HH:mm", "en_US_POSIX", "UTC");
  auto kolkata = DateFormatter::create("yyyy-MM-dd HH:mm", "en_US_POSIX", "Asia/Kolkata");
  ASSERT_TRUE(utc && kolkata);
  EXPECT_EQ(utc->format(kNewYearEvening), "2016-01-01 20:30");
  EXPECT_EQ(kolkata->format(kNewYearEvening), "2016-01-02 02:00");

  auto english = DateFormatter::create("dd MMMM,EEEE", "en_US_POSIX", "GMT");
  auto french = DateFormatter::create("dd MMMM,EEEE", "fr_FR", "GMT");
  EXPECT_EQ(english->format(kNewYearEvening), "01 January,Friday");
  EXPECT_EQ(french->format(kNewYearEvening), "01 janvier,vendredi");
  EXPECT_EQ(DateFormatter::create("MMM yyyy", "en_US_POSIX", "UTC")->format(kNewYearEvening), "Jan 2016");
}

TEST(DateFormatterTest, ParsesStrictlyAndWholly) {
  auto day = DateFormatter::create("yyyy-MM-dd", "en_US_POSIX", "Asia/Kolkata");
  ASSERT_TRUE(day);
  // Midnight in Kolkata (UTC+5:30) is 18:30 UTC the day before.
  EXPECT_EQ(day->parse("2016-01-02"), kNewYearEvening - 2 * 3600.0);
  EXPECT_FALSE(day->parse("2024-02-30"));
  EXPECT_FALSE(day->parse("2016-01-02 10:00"));
  EXPECT_FALSE(day->parse("2016/01/02"));
  EXPECT_FALSE(day->parse(""));
  EXPECT_TRUE(day->parse("2024-02-29"));
}

TEST(DateFormatterTest, UnknownZoneIsUtcAndCopiesKeepBehaviour) {
  auto original = DateFormatter::create("HH:mm", "en_US_POSIX", "nowhere/unknown");
  ASSERT_TRUE(original);
  DateFormatter copy = *original;
  EXPECT_EQ(copy.format(kNewYearEvening), "20:30");  // an unknown zone is UTC
}

TEST(DateFormatterTest, DeviceValuesComeFromOverridesThenEnvironment) {
  DeviceLocale::setLocaleId("de_DE");
  DeviceLocale::setTimeZoneId("Europe/Berlin");
  auto device = DateFormatter::createForDevice("d. MMMM yyyy HH:mm");
  ASSERT_TRUE(device);
  EXPECT_EQ(device->format(kNewYearEvening), "1. Januar 2016 21:30");
  DeviceLocale::setPreferredLanguages(std::vector<std::string>{"de-DE", "en"});
  EXPECT_EQ(DeviceLocale::preferredLanguages(), (std::vector<std::string>{"de-DE", "en"}));
  DeviceLocale::setLocaleId(std::nullopt);
  DeviceLocale::setTimeZoneId(std::nullopt);
  DeviceLocale::setPreferredLanguages(std::nullopt);
  unsetenv("LC_ALL");
  setenv("LANG", "de_AT.UTF-8", 1);
  setenv("TZ", ":Europe/Vienna", 1);
  setenv("LANGUAGE", "fr_CA:en", 1);
  EXPECT_EQ(DeviceLocale::localeId(), "de_AT");
  EXPECT_EQ(DeviceLocale::timeZoneId(), "Europe/Vienna");
  EXPECT_EQ(DeviceLocale::preferredLanguages(), (std::vector<std::string>{"fr-CA", "en"}));
  setenv("LANG", "C", 1);
  unsetenv("TZ");
  unsetenv("LANGUAGE");
  EXPECT_EQ(DeviceLocale::localeId(), "en_US_POSIX");
  EXPECT_EQ(DeviceLocale::timeZoneId(), "UTC");
  EXPECT_EQ(DeviceLocale::preferredLanguages(), (std::vector<std::string>{"en-US"}));
}

}  // namespace
}  // namespace quillet::platform
