#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/value/Error.h"

namespace quillet::platform {

// An exact decimal number: an integer coefficient times a power of ten, as
// the phone's decimal numbers are, so that 0.99 x 3 is 2.97 and not the
// nearest binary fraction. Values are immutable; any thread.
class DecimalNumber {
 public:
  static constexpr const char* kErrorDomain = "quillet.platform.decimal";
  // Error codes: the text is not wholly a number; the number does not fit.
  static constexpr int kNotANumber = 1;
  static constexpr int kOutOfRange = 2;

  // Parses `text` with the number rules of `locale` (for "en_US": an
  // optional minus, digits with "," grouping, "." before the fraction, an
  // optional exponent "E"). The whole text must be the number; otherwise
  // nullopt and `error` says why.
  static std::optional<DecimalNumber> parse(std::string_view text, const std::string& locale = "en_US",
                                            Error* error = nullptr);
  // Parses the plain form: "-", digits, ".", digits, "E" and an exponent.
  static std::optional<DecimalNumber> fromPlainText(std::string_view text);

  explicit DecimalNumber(int64_t integer = 0) : coefficient_(integer) {}

  // The exact product; nullopt when it does not fit in 38 digits.
  std::optional<DecimalNumber> multipliedBy(const DecimalNumber& other) const;
  bool operator==(const DecimalNumber& other) const;

  // True when there are no fraction digits (trailing zeros do not count).
  bool isInteger() const;
  // The nearest double.
  double doubleValue() const;
  // The integer part, cut toward zero; nullopt beyond 64 bits.
  std::optional<int64_t> truncatedInteger() const;
  // The plain form without an exponent or trailing fraction zeros: "2.97", "-3", "990000".
  std::string description() const;

 private:
  DecimalNumber(__int128 coefficient, int32_t exponent);
  DecimalNumber normalized() const;

  __int128 coefficient_ = 0;
  int32_t exponent_ = 0;
};

}  // namespace quillet::platform
