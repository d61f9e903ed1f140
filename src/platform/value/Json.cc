#include "platform/value/Json.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <vector>

#include "platform/support/Text.h"
#include "platform/value/NumberText.h"

namespace quillet::platform {
namespace {

constexpr int64_t kJsonErrorCode = 3840;

Error jsonError(std::string reason) {
  return Error("NSCocoaErrorDomain", kJsonErrorCode,
               Value::dictionary({{"NSDebugDescription", Value(std::move(reason))}}));
}

// Builds a Value from the parser's events. Only the innermost open container
// is ever changed, so the pointers to the open ones stay valid.
class ValueBuilder : public nlohmann::json_sax<nlohmann::json> {
 public:
  explicit ValueBuilder(bool allowFragments) : allowFragments_(allowFragments) {}

  Value& root() { return root_; }
  const std::string& reason() const { return reason_; }
  const std::string& parserMessage() const { return parserMessage_; }
  size_t parserPosition() const { return parserPosition_; }

  bool null() override { return add(Value::null()); }
  bool boolean(bool value) override { return add(Value(value)); }
  bool number_integer(number_integer_t value) override { return add(Value(static_cast<int64_t>(value))); }
  bool number_unsigned(number_unsigned_t value) override {
    if (value <= static_cast<uint64_t>(std::numeric_limits<int64_t>::max())) {
      return add(Value(static_cast<int64_t>(value)));
    }
    return add(Value(static_cast<double>(value)));
  }
  bool number_float(number_float_t value, const string_t&) override { return add(Value(value)); }
  bool string(string_t& value) override { return add(Value(std::move(value))); }
  bool binary(binary_t&) override { return false; }  // JSON text has no binary values

  bool start_object(std::size_t) override { return open(Value(Value::Dictionary{})); }
  bool key(string_t& value) override {
    key_ = std::move(value);
    return true;
  }
  bool end_object() override { return close(); }
  bool start_array(std::size_t) override { return open(Value(Value::Array{})); }
  bool end_array() override { return close(); }

  bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& ex) override {
    parserPosition_ = position;
    parserMessage_ = ex.what();
    return false;
  }

 private:
  // Places a value in the innermost open container, or as the root.
  Value* place(Value value) {
    if (open_.empty()) {
      root_ = std::move(value);
      return &root_;
    }
    Value& container = *open_.back();
    if (container.isArray()) {
      container.arrayItems().push_back(std::move(value));
      return &container.arrayItems().back();
    }
    auto [it, inserted] = container.dictionaryItems().insert_or_assign(std::move(key_), std::move(value));
    (void)inserted;
    return &it->second;
  }

  bool add(Value value) {
    if (open_.empty() && !allowFragments_) {
      reason_ = "JSON text did not start with array or object and option to allow fragments not set.";
      return false;
    }
    place(std::move(value));
    return true;
  }

  bool open(Value container) {
    if (open_.size() >= kJsonMaxDepth) {
      reason_ = "Too many nested arrays or dictionaries.";
      return false;
    }
    open_.push_back(place(std::move(container)));
    return true;
  }

  bool close() {
    open_.pop_back();
    return true;
  }

  bool allowFragments_;
  Value root_;
  std::vector<Value*> open_;
  std::string key_;
  std::string reason_;
  std::string parserMessage_;
  size_t parserPosition_ = 0;
};

// The reader's reason for a failure the parser reported.
std::string failureReason(std::string_view bytes, const ValueBuilder& builder) {
  if (!builder.reason().empty()) return builder.reason();
  if (bytes.find_first_not_of(" \t\r\n") == std::string_view::npos) return "No value.";
  const std::string& message = builder.parserMessage();
  const std::string where = " around character " + std::to_string(builder.parserPosition()) + ".";
  if (message.find("unexpected end of input") != std::string::npos) return "Unexpected end of file.";
  if (message.find("expected end of input") != std::string::npos) return "Garbage at end.";
  if (message.find("UTF-8") != std::string::npos) return "Unable to convert data to string" + where;
  if (message.find("number overflow") != std::string::npos) return "Number wound up as NaN" + where;
  return "Invalid value" + where;
}

// Well-formed UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isWellFormedUtf8(const std::string& s) {
  size_t i = 0;
  while (i < s.size()) {
    auto b = static_cast<unsigned char>(s[i]);
    if (b < 0x80) {
      ++i;
      continue;
    }
    size_t n;
    uint32_t cp;
    if (b >= 0xC2 && b <= 0xDF) {
      n = 2;
      cp = b & 0x1F;
    } else if (b >= 0xE0 && b <= 0xEF) {
      n = 3;
      cp = b & 0x0F;
    } else if (b >= 0xF0 && b <= 0xF4) {
      n = 4;
      cp = b & 0x07;
    } else {
      return false;
    }
    if (i + n > s.size()) return false;
    for (size_t k = 1; k < n; ++k) {
      auto c = static_cast<unsigned char>(s[i + k]);
      if ((c & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (c & 0x3F);
    }
    if ((n == 3 && cp < 0x800) || (n == 4 && (cp < 0x10000 || cp > 0x10FFFF)) || (cp >= 0xD800 && cp <= 0xDFFF)) {
      return false;
    }
    i += n;
  }
  return true;
}

class JsonWriter {
 public:
  explicit JsonWriter(bool pretty) : pretty_(pretty) {}

  // Appends `value`; false with `reason` set when it cannot be written.
  bool write(const Value& value, size_t level) {
    switch (value.type()) {
      case Value::Type::Null:
        out_ += "null";
        return true;
      case Value::Type::Bool:
        out_ += value.boolValue() ? "true" : "false";
        return true;
      case Value::Type::Integer:
        out_ += std::to_string(value.integerValue());
        return true;
      case Value::Type::Double:
        if (!std::isfinite(value.doubleValue())) return fail("Invalid number value in JSON write");
        out_ += doubleText(value.doubleValue());
        return true;
      case Value::Type::String:
        return writeString(value.string());
      case Value::Type::Array:
        return writeArray(value.arrayItems(), level);
      case Value::Type::Dictionary:
        return writeDictionary(value.dictionaryItems(), level);
      case Value::Type::Nil:
        return fail("Invalid type in JSON write (nil)");
      case Value::Type::Bytes:
        return fail("Invalid type in JSON write (bytes)");
      case Value::Type::Date:
        return fail("Invalid type in JSON write (date)");
      case Value::Type::Object:
        return fail("Invalid type in JSON write (object)");
    }
    return fail("Invalid type in JSON write");
  }

  std::string& text() { return out_; }
  const std::string& reason() const { return reason_; }

 private:
  bool fail(std::string reason) {
    reason_ = std::move(reason);
    return false;
  }

  void newline(size_t level) {
    if (!pretty_) return;
    out_ += '\n';
    out_.append(level * 2, ' ');
  }

  bool writeString(const std::string& s) {
    if (!isWellFormedUtf8(s)) return fail("Invalid string in JSON write (not UTF-8)");
    out_ += '"';
    for (char ch : s) {
      switch (ch) {
        case '"':
          out_ += "\\\"";
          break;
        case '\\':
          out_ += "\\\\";
          break;
        case '/':
          out_ += "\\/";
          break;
        case '\b':
          out_ += "\\b";
          break;
        case '\f':
          out_ += "\\f";
          break;
        case '\n':
          out_ += "\\n";
          break;
        case '\r':
          out_ += "\\r";
          break;
        case '\t':
          out_ += "\\t";
          break;
        default:
          if (static_cast<unsigned char>(ch) < 0x20) {
            const uint8_t byte = static_cast<uint8_t>(ch);
            out_ += "\\u00" + hexString(std::span<const uint8_t>(&byte, 1));
          } else {
            out_ += ch;
          }
      }
    }
    out_ += '"';
    return true;
  }

  bool writeArray(const Value::Array& items, size_t level) {
    out_ += '[';
    for (size_t i = 0; i < items.size(); ++i) {
      if (i > 0) out_ += ',';
      newline(level + 1);
      if (!write(items[i], level + 1)) return false;
    }
    if (!items.empty()) newline(level);
    out_ += ']';
    return true;
  }

  bool writeDictionary(const Value::Dictionary& items, size_t level) {
    out_ += '{';
    bool first = true;
    for (const auto& [key, item] : items) {
      if (!first) out_ += ',';
      first = false;
      newline(level + 1);
      if (!writeString(key)) return false;
      out_ += pretty_ ? " : " : ":";
      if (!write(item, level + 1)) return false;
    }
    if (!items.empty()) newline(level);
    out_ += '}';
    return true;
  }

  bool pretty_;
  std::string out_;
  std::string reason_;
};

}  // namespace

Value jsonDecode(std::string_view bytes, Error* error, bool allowFragments) {
  // The parser takes a zero byte for the end of the text and would pass over
  // what follows it; no JSON text holds one, so it is refused here.
  if (size_t zero = bytes.find('\0'); zero != std::string_view::npos) {
    if (error) *error = jsonError("Invalid value around character " + std::to_string(zero) + ".");
    return Value();
  }
  ValueBuilder builder(allowFragments);
  bool parsed = nlohmann::json::sax_parse(bytes.begin(), bytes.end(), &builder);
  if (parsed) return std::move(builder.root());
  if (error) *error = jsonError(failureReason(bytes, builder));
  return Value();
}

std::string jsonEncode(const Value& value, bool pretty, Error* error) {
  JsonWriter writer(pretty);
  if (writer.write(value, 0)) return std::move(writer.text());
  if (error) *error = jsonError(writer.reason());
  return "";
}

}  // namespace quillet::platform
