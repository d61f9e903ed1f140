#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quillet::platform {

// The device's locale, time zone and preferred languages. By default they
// come from the environment (LC_ALL or LANG, TZ, LANGUAGE), falling back to
// "en_US_POSIX", "UTC" and the language of the locale; the driver may
// override each. Thread-safe.
class DeviceLocale {
 public:
  // An ICU locale id such as "en_US" or "en_US_POSIX".
  static std::string localeId();
  // An Olson time-zone id such as "Europe/Berlin" or "UTC".
  static std::string timeZoneId();
  // Languages in order of preference, as tags such as "en-US" or "de".
  static std::vector<std::string> preferredLanguages();

  // Overrides; std::nullopt returns to the environment's value.
  static void setLocaleId(std::optional<std::string> localeId);
  static void setTimeZoneId(std::optional<std::string> timeZoneId);
  static void setPreferredLanguages(std::optional<std::vector<std::string>> languages);
};

}  // namespace quillet::platform
