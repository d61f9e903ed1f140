#include "platform/text/DecimalNumber.h"

#include <unicode/decimfmt.h>
#include <unicode/fmtable.h>
#include <unicode/locid.h>
#include <unicode/numfmt.h>
#include <unicode/parsepos.h>
#include <unicode/unistr.h>

#include <cstdlib>
#include <map>
#include <memory>

namespace quillet::platform {
namespace {

// Coefficients stay within 38 decimal digits, so products are checked exactly.
constexpr int kMaxDigits = 38;
// Beyond the range of a double either way; keeps the plain form short.
constexpr int64_t kMaxExponent = 400;

__int128 tenToThe(int power) {
  __int128 value = 1;
  for (int i = 0; i < power; ++i) value *= 10;
  return value;
}

const __int128 kCoefficientLimit = tenToThe(kMaxDigits);

Error decimalError(int code, std::string_view text) {
  // Built by appending: "literal" + std::string trips a false -Wrestrict in GCC 12 at -O3.
  std::string description(code == DecimalNumber::kNotANumber ? "Not a number: \"" : "Number out of range: \"");
  description.append(text).append("\"");
  return Error::withDescription(DecimalNumber::kErrorDomain, code, std::move(description));
}

// One parser per locale and thread: making one costs far more than a parse.
icu::NumberFormat* parserFor(const std::string& locale) {
  thread_local std::map<std::string, std::unique_ptr<icu::NumberFormat>> parsers;
  auto& parser = parsers[locale];
  if (!parser) {
    UErrorCode status = U_ZERO_ERROR;
    parser.reset(icu::NumberFormat::createInstance(icu::Locale(locale.c_str()), status));
    if (U_FAILURE(status)) parser.reset();
    if (parser) parser->setLenient(false);
  }
  return parser.get();
}

}  // namespace

DecimalNumber::DecimalNumber(__int128 coefficient, int32_t exponent) : coefficient_(coefficient), exponent_(exponent) {}

std::optional<DecimalNumber> DecimalNumber::parse(std::string_view text, const std::string& locale, Error* error) {
  auto fail = [&](int code) -> std::optional<DecimalNumber> {
    if (error) *error = decimalError(code, text);
    return std::nullopt;
  };
  icu::NumberFormat* parser = parserFor(locale);
  if (parser == nullptr || text.empty()) return fail(kNotANumber);
  const icu::UnicodeString unicode =
      icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
  icu::Formattable result;
  icu::ParsePosition position(0);
  parser->parse(unicode, result, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() != unicode.length()) return fail(kNotANumber);
  UErrorCode status = U_ZERO_ERROR;
  const icu::StringPiece digits = result.getDecimalNumber(status);
  if (U_FAILURE(status)) return fail(kNotANumber);
  auto number = fromPlainText(std::string_view(digits.data(), static_cast<size_t>(digits.size())));
  if (!number) return fail(kOutOfRange);  // infinities and numbers beyond 38 digits
  return number;
}

std::optional<DecimalNumber> DecimalNumber::fromPlainText(std::string_view text) {
  size_t at = 0;
  const bool negative = at < text.size() && text[at] == '-';
  if (negative || (at < text.size() && text[at] == '+')) ++at;
  __int128 coefficient = 0;
  int64_t exponent = 0;
  bool anyDigit = false;
  bool inFraction = false;
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (c == '.' && !inFraction) {
      inFraction = true;
      continue;
    }
    if (c < '0' || c > '9') break;
    anyDigit = true;
    if (coefficient == 0 && c == '0') {
      if (inFraction) --exponent;
      continue;
    }
    if (coefficient >= kCoefficientLimit / 10) {
      // Digits beyond the 38th: only zeros of the integer part can be kept, as exponent.
      if (c != '0') return std::nullopt;
      if (!inFraction) ++exponent;
      continue;
    }
    coefficient = coefficient * 10 + (c - '0');
    if (inFraction) --exponent;
  }
  if (!anyDigit) return std::nullopt;
  if (at < text.size()) {
    if (text[at] != 'E' && text[at] != 'e') return std::nullopt;
    ++at;
    const bool negativeExponent = at < text.size() && text[at] == '-';
    if (negativeExponent || (at < text.size() && text[at] == '+')) ++at;
    if (at == text.size()) return std::nullopt;
    int64_t written = 0;
    for (; at < text.size(); ++at) {
      if (text[at] < '0' || text[at] > '9') return std::nullopt;
      written = written * 10 + (text[at] - '0');
      if (written > kMaxExponent) return std::nullopt;
    }
    exponent += negativeExponent ? -written : written;
  }
  if (coefficient == 0) return DecimalNumber(0);
  if (exponent > kMaxExponent || exponent < -kMaxExponent) return std::nullopt;
  return DecimalNumber(negative ? -coefficient : coefficient, static_cast<int32_t>(exponent)).normalized();
}

DecimalNumber DecimalNumber::normalized() const {
  if (coefficient_ == 0) return DecimalNumber(__int128{0}, 0);
  __int128 coefficient = coefficient_;
  int32_t exponent = exponent_;
  while (coefficient % 10 == 0) {
    coefficient /= 10;
    ++exponent;
  }
  return DecimalNumber(coefficient, exponent);
}

std::optional<DecimalNumber> DecimalNumber::multipliedBy(const DecimalNumber& other) const {
  __int128 product = 0;
  if (__builtin_mul_overflow(coefficient_, other.coefficient_, &product)) return std::nullopt;
  if (product >= kCoefficientLimit || product <= -kCoefficientLimit) return std::nullopt;
  return DecimalNumber(product, exponent_ + other.exponent_).normalized();
}

bool DecimalNumber::operator==(const DecimalNumber& other) const {
  const DecimalNumber a = normalized();
  const DecimalNumber b = other.normalized();
  return a.coefficient_ == b.coefficient_ && a.exponent_ == b.exponent_;
}

bool DecimalNumber::isInteger() const { return normalized().exponent_ >= 0; }

double DecimalNumber::doubleValue() const { return std::strtod(description().c_str(), nullptr); }

std::optional<int64_t> DecimalNumber::truncatedInteger() const {
  const DecimalNumber n = normalized();
  __int128 value = n.coefficient_;
  if (n.exponent_ < 0) {
    value = -n.exponent_ >= kMaxDigits ? 0 : value / tenToThe(-n.exponent_);
  } else {
    for (int32_t i = 0; i < n.exponent_; ++i) {
      if (value > INT64_MAX || value < INT64_MIN) return std::nullopt;
      value *= 10;
    }
  }
  if (value > INT64_MAX || value < INT64_MIN) return std::nullopt;
  return static_cast<int64_t>(value);
}

std::string DecimalNumber::description() const {
  const DecimalNumber n = normalized();
  const bool negative = n.coefficient_ < 0;
  unsigned __int128 magnitude =
      negative ? static_cast<unsigned __int128>(-n.coefficient_) : static_cast<unsigned __int128>(n.coefficient_);
  std::string reversed;
  do {
    reversed.push_back(static_cast<char>('0' + static_cast<int>(magnitude % 10)));
    magnitude /= 10;
  } while (magnitude != 0);
  const std::string digits(reversed.rbegin(), reversed.rend());
  std::string out;
  if (negative) out.push_back('-');
  if (n.exponent_ >= 0) {
    out.append(digits).append(static_cast<size_t>(n.exponent_), '0');
    return out;
  }
  const size_t fraction = static_cast<size_t>(-static_cast<int64_t>(n.exponent_));
  if (digits.size() <= fraction) {
    out.append("0.").append(fraction - digits.size(), '0').append(digits);
  } else {
    out.append(digits, 0, digits.size() - fraction).append(".").append(digits, digits.size() - fraction);
  }
  return out;
}

}  // namespace quillet::platform
