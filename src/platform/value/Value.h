#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/value/ValueObject.h"

namespace quillet::platform {

// The dynamic object of the phone's program: nil (no object), the null object
// (a JSON null), a boolean, an integer, a real, a string, bytes, a date, an
// array, a dictionary with string keys, or a shared platform object (an
// image, ...). Values are plain copyable data; they are not thread-safe for
// concurrent mutation of one instance.
class Value {
 public:
  enum class Type { Nil, Null, Bool, Integer, Double, String, Bytes, Date, Array, Dictionary, Object };
  using Array = std::vector<Value>;
  using Dictionary = std::map<std::string, Value>;  // keys kept sorted
  using Bytes = std::vector<uint8_t>;

  Value() = default;  // nil
  Value(bool b) : storage_(b) {}
  Value(int i) : storage_(static_cast<int64_t>(i)) {}
  Value(long i) : storage_(static_cast<int64_t>(i)) {}
  Value(long long i) : storage_(static_cast<int64_t>(i)) {}
  Value(unsigned u) : storage_(static_cast<int64_t>(u)) {}
  Value(unsigned long u) : storage_(static_cast<int64_t>(u)) {}
  Value(unsigned long long u) : storage_(static_cast<int64_t>(u)) {}
  Value(double d) : storage_(d) {}
  Value(std::string s) : storage_(std::move(s)) {}
  Value(std::string_view s) : storage_(std::string(s)) {}
  Value(const char* s) : storage_(std::string(s)) {}
  Value(Array a) : storage_(std::move(a)) {}
  Value(Dictionary d) : storage_(std::move(d)) {}
  Value(std::nullptr_t) = delete;  // say Value() for nil or Value::null()

  static Value null();
  static Value bytes(Bytes data);
  static Value bytes(std::string_view data);
  // A date: seconds since 1970.
  static Value date(double secondsSince1970);
  static Value array(std::initializer_list<Value> items);
  static Value dictionary(std::initializer_list<std::pair<const std::string, Value>> items);
  // A platform object; a null pointer gives nil.
  static Value object(std::shared_ptr<const ValueObject> object);

  Type type() const;
  bool isNil() const { return type() == Type::Nil; }
  bool isNull() const { return type() == Type::Null; }
  bool isBool() const { return type() == Type::Bool; }
  bool isInteger() const { return type() == Type::Integer; }
  bool isDouble() const { return type() == Type::Double; }
  // A number: bool, integer or double.
  bool isNumber() const;
  bool isString() const { return type() == Type::String; }
  bool isBytes() const { return type() == Type::Bytes; }
  bool isDate() const { return type() == Type::Date; }
  bool isArray() const { return type() == Type::Array; }
  bool isDictionary() const { return type() == Type::Dictionary; }
  bool isObject() const { return type() == Type::Object; }

  // Readings in the manner of the original's number and string objects:
  // numbers convert; a string is read by its leading number ("12abc" -> 12,
  // "true"/"yes" -> true for boolValue); anything else gives 0 / false / "".
  bool boolValue() const;
  int64_t integerValue() const;
  double doubleValue() const;

  // Direct access; the caller checks the type first (wrong type throws std::bad_variant_access).
  const std::string& string() const;
  const Bytes& bytesData() const;
  double dateSeconds() const;
  const Array& arrayItems() const;
  Array& arrayItems();
  const Dictionary& dictionaryItems() const;
  Dictionary& dictionaryItems();
  // The object held, or null when this is not an object.
  std::shared_ptr<const ValueObject> asObject() const;
  // The object held when it is a T, else null.
  template <class T>
  std::shared_ptr<const T> objectAs() const {
    return std::dynamic_pointer_cast<const T>(asObject());
  }

  // Dictionary look-up: nil when this is not a dictionary or the key is absent.
  const Value& operator[](std::string_view key) const;
  // Array element: nil when this is not an array or the index is out of range.
  const Value& at(size_t index) const;
  // Number of elements of an array or dictionary, bytes of bytes, characters
  // (UTF-16 units, as the phone counts them) of a string; else 0.
  size_t count() const;

  // Sets a dictionary entry (a nil value removes the key); a nil receiver
  // becomes a dictionary; a receiver of another type is left unchanged.
  void set(std::string key, Value value);
  // Appends to an array; a nil receiver becomes an array; another type is left unchanged.
  void append(Value value);

  // The text "%@" gives: "(null)" for nil, "<null>" for the null object, a
  // number's digits (true -> "1"), strings as they stand, bytes as
  // "<0a1b2c3d 0e>", dates as "2001-01-01 00:00:00 +0000", an object by its
  // own description, arrays and dictionaries in the original's multi-line style:
  //   (\n    1,\n    "a b"\n)        {\n    key = value;\n    "other key" = 2;\n}
  // Keys sorted. Inside a collection, a scalar's text (keys too) is quoted
  // unless it is non-empty ASCII letters and digits only ("id_str", "-1",
  // "0.5" and "<null>" are quoted), with \" \\ \n \r \t escaped. A nested
  // collection opens with its own indent, 4 spaces per level, so it reads
  // "    key =     {" and an array element "        {" as on the phone.
  std::string description() const;

  // Numbers (bool, integer, real) compare by value, so Value(true) == Value(1)
  // and Value(1) == Value(1.0); objects by identity; everything else compares
  // by type and content.
  bool operator==(const Value& other) const;

 private:
  struct NullTag {
    bool operator==(const NullTag&) const = default;
  };
  struct DateTag {
    double seconds = 0;
    bool operator==(const DateTag&) const = default;
  };
  struct BytesTag {
    Bytes data;
    bool operator==(const BytesTag&) const = default;
  };
  struct ObjectTag {
    std::shared_ptr<const ValueObject> object;
    bool operator==(const ObjectTag&) const = default;  // same pointer
  };
  std::variant<std::monostate, NullTag, bool, int64_t, double, std::string, BytesTag, DateTag, Array, Dictionary,
               ObjectTag>
      storage_;
};

// The value's text when it is a string, else "" (a missing or mistyped entry reads empty).
inline std::string textOf(const Value& value) { return value.isString() ? value.string() : std::string(); }

}  // namespace quillet::platform
