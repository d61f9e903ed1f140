#include "platform/text/DeviceLocale.h"

#include <cstdlib>
#include <mutex>

namespace quillet::platform {
namespace {

struct Overrides {
  std::mutex mutex;
  std::optional<std::string> localeId;
  std::optional<std::string> timeZoneId;
  std::optional<std::vector<std::string>> languages;
};

Overrides& overrides() {
  static Overrides o;
  return o;
}

std::string environment(const char* name) {
  const char* v = std::getenv(name);
  return v ? std::string(v) : std::string();
}

// "de_DE.UTF-8@euro" -> "de_DE"; "C" and "POSIX" mean no locale.
std::string localeFromPosix(std::string value) {
  value = value.substr(0, value.find_first_of(".@"));
  if (value == "C" || value == "POSIX") return {};
  return value;
}

// "en_US_POSIX" -> "en-US"; "de" -> "de".
std::string languageTag(const std::string& localeId) {
  std::string tag;
  size_t start = 0;
  for (int part = 0; part < 2 && start <= localeId.size(); ++part) {
    size_t end = localeId.find_first_of("_-", start);
    std::string piece = localeId.substr(start, end == std::string::npos ? std::string::npos : end - start);
    if (piece.empty()) break;
    tag += (part ? "-" : "") + piece;
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return tag;
}

}  // namespace

std::string DeviceLocale::localeId() {
  {
    std::lock_guard lock(overrides().mutex);
    if (overrides().localeId) return *overrides().localeId;
  }
  std::string id = localeFromPosix(environment("LC_ALL"));
  if (id.empty()) id = localeFromPosix(environment("LANG"));
  return id.empty() ? "en_US_POSIX" : id;
}

std::string DeviceLocale::timeZoneId() {
  {
    std::lock_guard lock(overrides().mutex);
    if (overrides().timeZoneId) return *overrides().timeZoneId;
  }
  std::string tz = environment("TZ");
  if (!tz.empty() && tz.front() == ':') tz.erase(0, 1);
  return tz.empty() ? "UTC" : tz;
}

std::vector<std::string> DeviceLocale::preferredLanguages() {
  {
    std::lock_guard lock(overrides().mutex);
    if (overrides().languages) return *overrides().languages;
  }
  std::vector<std::string> result;
  std::string list = environment("LANGUAGE");
  size_t start = 0;
  while (start < list.size()) {
    size_t end = list.find(':', start);
    if (end == std::string::npos) end = list.size();
    std::string tag = languageTag(localeFromPosix(list.substr(start, end - start)));
    if (!tag.empty()) result.push_back(tag);
    start = end + 1;
  }
  if (result.empty()) result.push_back(languageTag(localeId()));
  return result;
}

void DeviceLocale::setLocaleId(std::optional<std::string> localeId) {
  std::lock_guard lock(overrides().mutex);
  overrides().localeId = std::move(localeId);
}

void DeviceLocale::setTimeZoneId(std::optional<std::string> timeZoneId) {
  std::lock_guard lock(overrides().mutex);
  overrides().timeZoneId = std::move(timeZoneId);
}

void DeviceLocale::setPreferredLanguages(std::optional<std::vector<std::string>> languages) {
  std::lock_guard lock(overrides().mutex);
  overrides().languages = std::move(languages);
}

}  // namespace quillet::platform
