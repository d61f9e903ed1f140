#include "platform/value/Value.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "platform/support/Text.h"
#include "platform/value/NumberText.h"

namespace quillet::platform {
namespace {

const Value& nilValue() {
  static const Value nil;
  return nil;
}

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isAlnum(char c) { return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

size_t skipSpace(const std::string& s, size_t i) {
  while (i < s.size() && isSpace(s[i])) ++i;
  return i;
}

// A string's leading integer: spaces, a sign, digits; saturates on overflow.
int64_t leadingInteger(const std::string& s) {
  size_t i = skipSpace(s, 0);
  bool negative = false;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) negative = s[i++] == '-';
  uint64_t magnitude = 0;
  const uint64_t limit = negative ? uint64_t{1} << 63 : (uint64_t{1} << 63) - 1;
  for (; i < s.size() && isDigit(s[i]); ++i) {
    uint64_t digit = static_cast<uint64_t>(s[i] - '0');
    if (magnitude > (limit - digit) / 10) {
      magnitude = limit;
      break;
    }
    magnitude = magnitude * 10 + digit;
  }
  if (!negative) return static_cast<int64_t>(magnitude);
  return magnitude == (uint64_t{1} << 63) ? std::numeric_limits<int64_t>::min() : -static_cast<int64_t>(magnitude);
}

// A string's leading real: spaces, then the longest prefix of the form
// [+-]digits[.digits][e[+-]digits]; 0 when there is none.
double leadingDouble(const std::string& s) {
  size_t start = skipSpace(s, 0);
  size_t i = start;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
  size_t digits = 0;
  for (; i < s.size() && isDigit(s[i]); ++i) ++digits;
  if (i < s.size() && s[i] == '.') {
    ++i;
    for (; i < s.size() && isDigit(s[i]); ++i) ++digits;
  }
  if (digits == 0) return 0;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    size_t j = i + 1;
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) ++j;
    if (j < s.size() && isDigit(s[j])) {
      while (j < s.size() && isDigit(s[j])) ++j;
      i = j;
    }
  }
  const char* first = s.data() + start;
  if (*first == '+') ++first;  // from_chars takes no plus sign
  double value = 0;
  auto [end, ec] = std::from_chars(first, s.data() + i, value);
  if (ec == std::errc::result_out_of_range) {
    bool negative = *first == '-';
    // Too small reads as zero, too large as infinity, as strtod does.
    size_t e = std::string_view(first, static_cast<size_t>(s.data() + i - first)).find_first_of("eE");
    bool tiny = e != std::string_view::npos && first[e + 1] == '-';
    value = tiny ? 0.0 : std::numeric_limits<double>::infinity();
    if (negative) value = -value;
  }
  (void)end;
  return value;
}

// The digits of a date as "%Y-%m-%d %H:%M:%S +0000" in UTC, for any year.
std::string dateText(double secondsSince1970) {
  if (!std::isfinite(secondsSince1970) || std::fabs(secondsSince1970) > 1e15) return "(invalid date)";
  auto total = static_cast<int64_t>(std::floor(secondsSince1970));
  int64_t days = total / 86400;
  int64_t rest = total % 86400;
  if (rest < 0) {
    rest += 86400;
    --days;
  }
  // Civil date from days since 1970-01-01 (proleptic Gregorian).
  int64_t z = days + 719468;
  int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  int64_t doe = z - era * 146097;
  int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  int64_t mp = (5 * doy + 2) / 153;
  int64_t day = doy - (153 * mp + 2) / 5 + 1;
  int64_t month = mp < 10 ? mp + 3 : mp - 9;
  int64_t year = yoe + era * 400 + (month <= 2 ? 1 : 0);
  char text[96];
  std::snprintf(text, sizeof text, "%04lld-%02lld-%02lld %02lld:%02lld:%02lld +0000", static_cast<long long>(year),
                static_cast<long long>(month), static_cast<long long>(day), static_cast<long long>(rest / 3600),
                static_cast<long long>(rest / 60 % 60), static_cast<long long>(rest % 60));
  return text;
}

// A scalar's text inside a collection: as it stands when it is made of ASCII
// letters and digits only, otherwise quoted with quotes, backslashes and line
// breaks escaped.
void appendQuotedIfNeeded(std::string& out, const std::string& text) {
  bool plain = !text.empty();
  for (char c : text) plain = plain && isAlnum(c);
  if (plain) {
    out += text;
    return;
  }
  out += '"';
  for (char c : text) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        out += c;
    }
  }
  out += '"';
}

// Appends `value` as an element of a collection at nesting `level` (the
// top-level collection is level 0). A collection opens with its own indent,
// so a nested one reads "key =     {" as on the phone.
void appendDescription(std::string& out, const Value& value, size_t level) {
  if (!value.isArray() && !value.isDictionary()) {
    appendQuotedIfNeeded(out, value.description());
    return;
  }
  const std::string indent(level * 4, ' ');
  const std::string inner((level + 1) * 4, ' ');
  out += indent;
  if (value.isArray()) {
    out += "(\n";
    const auto& items = value.arrayItems();
    for (size_t i = 0; i < items.size(); ++i) {
      out += inner;
      appendDescription(out, items[i], level + 1);
      out += i + 1 < items.size() ? ",\n" : "\n";
    }
    out += indent + ")";
  } else {
    out += "{\n";
    for (const auto& [key, item] : value.dictionaryItems()) {
      out += inner;
      appendQuotedIfNeeded(out, key);
      out += " = ";
      appendDescription(out, item, level + 1);
      out += ";\n";
    }
    out += indent + "}";
  }
}

// Numbers compare by value across bool, integer and real.
bool numbersEqual(const Value& a, const Value& b) {
  if (a.isDouble() || b.isDouble())
    return a.doubleValue() == b.doubleValue() || (std::isnan(a.doubleValue()) && std::isnan(b.doubleValue()));
  return a.integerValue() == b.integerValue();
}

}  // namespace

Value Value::null() {
  Value v;
  v.storage_ = NullTag{};
  return v;
}

Value Value::bytes(Bytes data) {
  Value v;
  v.storage_ = BytesTag{std::move(data)};
  return v;
}

Value Value::bytes(std::string_view data) { return bytes(Bytes(data.begin(), data.end())); }

Value Value::date(double secondsSince1970) {
  Value v;
  v.storage_ = DateTag{secondsSince1970};
  return v;
}

Value Value::array(std::initializer_list<Value> items) { return Value(Array(items)); }

Value Value::dictionary(std::initializer_list<std::pair<const std::string, Value>> items) {
  return Value(Dictionary(items));
}

Value Value::object(std::shared_ptr<const ValueObject> object) {
  Value v;
  if (object) v.storage_ = ObjectTag{std::move(object)};
  return v;
}

Value::Type Value::type() const { return static_cast<Type>(storage_.index()); }

bool Value::isNumber() const { return isBool() || isInteger() || isDouble(); }

bool Value::boolValue() const {
  switch (type()) {
    case Type::Bool:
      return std::get<bool>(storage_);
    case Type::Integer:
      return std::get<int64_t>(storage_) != 0;
    case Type::Double:
      return std::get<double>(storage_) != 0;
    case Type::String: {
      // Leading spaces, a sign and zeros are skipped; then Y, y, T, t or 1-9 mean true.
      const std::string& s = std::get<std::string>(storage_);
      size_t i = skipSpace(s, 0);
      if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
      while (i < s.size() && s[i] == '0') ++i;
      if (i >= s.size()) return false;
      char c = s[i];
      return c == 'Y' || c == 'y' || c == 'T' || c == 't' || (c >= '1' && c <= '9');
    }
    default:
      return false;
  }
}

int64_t Value::integerValue() const {
  switch (type()) {
    case Type::Bool:
      return std::get<bool>(storage_) ? 1 : 0;
    case Type::Integer:
      return std::get<int64_t>(storage_);
    case Type::Double: {
      double d = std::get<double>(storage_);
      if (std::isnan(d)) return 0;
      if (d >= 9223372036854775808.0) return std::numeric_limits<int64_t>::max();
      if (d < -9223372036854775808.0) return std::numeric_limits<int64_t>::min();
      return static_cast<int64_t>(d);
    }
    case Type::String:
      return leadingInteger(std::get<std::string>(storage_));
    default:
      return 0;
  }
}

double Value::doubleValue() const {
  switch (type()) {
    case Type::Bool:
      return std::get<bool>(storage_) ? 1 : 0;
    case Type::Integer:
      return static_cast<double>(std::get<int64_t>(storage_));
    case Type::Double:
      return std::get<double>(storage_);
    case Type::String:
      return leadingDouble(std::get<std::string>(storage_));
    default:
      return 0;
  }
}

const std::string& Value::string() const { return std::get<std::string>(storage_); }
const Value::Bytes& Value::bytesData() const { return std::get<BytesTag>(storage_).data; }
double Value::dateSeconds() const { return std::get<DateTag>(storage_).seconds; }
const Value::Array& Value::arrayItems() const { return std::get<Array>(storage_); }
Value::Array& Value::arrayItems() { return std::get<Array>(storage_); }
const Value::Dictionary& Value::dictionaryItems() const { return std::get<Dictionary>(storage_); }
Value::Dictionary& Value::dictionaryItems() { return std::get<Dictionary>(storage_); }

std::shared_ptr<const ValueObject> Value::asObject() const {
  const auto* tag = std::get_if<ObjectTag>(&storage_);
  return tag ? tag->object : nullptr;
}

const Value& Value::operator[](std::string_view key) const {
  if (!isDictionary()) return nilValue();
  const auto& items = dictionaryItems();
  auto found = items.find(std::string(key));
  return found == items.end() ? nilValue() : found->second;
}

const Value& Value::at(size_t index) const {
  if (!isArray() || index >= arrayItems().size()) return nilValue();
  return arrayItems()[index];
}

size_t Value::count() const {
  switch (type()) {
    case Type::Array:
      return arrayItems().size();
    case Type::Dictionary:
      return dictionaryItems().size();
    case Type::Bytes:
      return bytesData().size();
    case Type::String:
      return utf16Length(string());
    default:
      return 0;
  }
}

void Value::set(std::string key, Value value) {
  if (isNil()) storage_ = Dictionary{};
  if (!isDictionary()) return;
  if (value.isNil()) {
    dictionaryItems().erase(key);
  } else {
    dictionaryItems().insert_or_assign(std::move(key), std::move(value));
  }
}

void Value::append(Value value) {
  if (isNil()) storage_ = Array{};
  if (isArray()) arrayItems().push_back(std::move(value));
}

std::string Value::description() const {
  switch (type()) {
    case Type::Nil:
      return "(null)";
    case Type::Null:
      return "<null>";
    case Type::Bool:
      return std::get<bool>(storage_) ? "1" : "0";
    case Type::Integer:
      return std::to_string(std::get<int64_t>(storage_));
    case Type::Double:
      return doubleText(std::get<double>(storage_));
    case Type::String:
      return string();
    case Type::Bytes: {
      // Groups of four bytes: "<0a1b2c3d 4e5f>".
      std::string out = "<";
      const Bytes& data = bytesData();
      for (size_t i = 0; i < data.size(); i += 4) {
        if (i > 0) out += ' ';
        out += hexString(std::span<const uint8_t>(data).subspan(i, std::min<size_t>(4, data.size() - i)));
      }
      return out + ">";
    }
    case Type::Date:
      return dateText(dateSeconds());
    case Type::Object:
      return asObject()->description();
    case Type::Array:
    case Type::Dictionary: {
      std::string out;
      appendDescription(out, *this, 0);
      return out;
    }
  }
  return "";
}

bool Value::operator==(const Value& other) const {
  if (isNumber() && other.isNumber()) return numbersEqual(*this, other);
  return storage_ == other.storage_;
}

}  // namespace quillet::platform
