#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/value/Error.h"

namespace quillet::platform {

// Formats and strictly parses dates with a pattern in the usual date-pattern
// syntax ("yyyy-MM-dd", "MMM yyyy", "dd MMMM,EEEE", "hh:mm a", ...), in one
// locale and one time zone. Times are seconds since 1970.
// Not for concurrent use: one thread at a time per object (copy it per thread).
class DateFormatter {
 public:
  // `localeId`: an ICU id such as "en_US_POSIX"; `timeZoneId`: an Olson id
  // such as "UTC", "GMT" or "Asia/Kolkata" (an unknown id behaves as UTC).
  // Patterns are not validated (as on the phone, an odd pattern formats
  // oddly); nullopt and the error come only when the formatter cannot be
  // built, e.g. for missing locale data.
  static std::optional<DateFormatter> create(std::string_view pattern, std::string_view localeId,
                                             std::string_view timeZoneId, Error* error = nullptr);
  // The same in the device's locale and time zone (DeviceLocale).
  static std::optional<DateFormatter> createForDevice(std::string_view pattern, Error* error = nullptr);

  DateFormatter(const DateFormatter& other);
  DateFormatter& operator=(const DateFormatter& other);
  DateFormatter(DateFormatter&&) noexcept;
  DateFormatter& operator=(DateFormatter&&) noexcept;
  ~DateFormatter();

  std::string format(double secondsSince1970) const;

  // Strict parsing: the whole text must fit the pattern and name a real date
  // ("2024-02-30" fails for "yyyy-MM-dd", as does trailing text). Fields the
  // pattern lacks default to 1970-01-01 00:00:00 in the time zone.
  std::optional<double> parse(std::string_view text) const;

 private:
  struct Impl;
  explicit DateFormatter(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace quillet::platform
