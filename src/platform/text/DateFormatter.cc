#include "platform/text/DateFormatter.h"

#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include "platform/text/DeviceLocale.h"
#include "platform/text/IcuText.h"
#include "platform/text/TextError.h"

namespace quillet::platform {

struct DateFormatter::Impl {
  std::unique_ptr<icu::SimpleDateFormat> format;
};

DateFormatter::DateFormatter(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
DateFormatter::DateFormatter(const DateFormatter& other)
    : impl_(std::make_unique<Impl>(Impl{std::unique_ptr<icu::SimpleDateFormat>(other.impl_->format->clone())})) {}
DateFormatter& DateFormatter::operator=(const DateFormatter& other) {
  if (this != &other) *this = DateFormatter(other);
  return *this;
}
DateFormatter::DateFormatter(DateFormatter&&) noexcept = default;
DateFormatter& DateFormatter::operator=(DateFormatter&&) noexcept = default;
DateFormatter::~DateFormatter() = default;

std::optional<DateFormatter> DateFormatter::create(std::string_view pattern, std::string_view localeId,
                                                   std::string_view timeZoneId, Error* error) {
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale locale(std::string(localeId).c_str());
  auto format = std::make_unique<icu::SimpleDateFormat>(toIcu(pattern), locale, status);
  if (U_FAILURE(status)) {
    setTextError(error, kTextErrorBadDateFormat,
                 "Date pattern \"" + std::string(pattern) + "\" is invalid: " + u_errorName(status));
    return std::nullopt;
  }
  icu::TimeZone* zone = icu::TimeZone::createTimeZone(toIcu(timeZoneId));
  if (*zone == icu::TimeZone::getUnknown()) {
    delete zone;
    zone = icu::TimeZone::createTimeZone("UTC");
  }
  format->adoptTimeZone(zone);
  // Non-lenient: no out-of-range fields, no loose whitespace or partial literals.
  format->setLenient(false);
  return DateFormatter(std::make_unique<Impl>(Impl{std::move(format)}));
}

std::optional<DateFormatter> DateFormatter::createForDevice(std::string_view pattern, Error* error) {
  return create(pattern, DeviceLocale::localeId(), DeviceLocale::timeZoneId(), error);
}

std::string DateFormatter::format(double secondsSince1970) const {
  icu::UnicodeString out;
  impl_->format->format(static_cast<UDate>(secondsSince1970 * 1000.0), out);
  return fromIcu(out);
}

std::optional<double> DateFormatter::parse(std::string_view text) const {
  icu::UnicodeString input = toIcu(text);
  icu::ParsePosition position(0);
  UDate date = impl_->format->parse(input, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() != input.length()) return std::nullopt;
  return date / 1000.0;
}

}  // namespace quillet::platform
