#include "platform/plist/PropertyList.h"

#include <plist/plist.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>

namespace quillet::platform {
namespace {

// Property list dates count from 2001-01-01; Value dates from 1970-01-01.
constexpr double kReferenceDateOffset = 978307200.0;

struct NodeDeleter {
  void operator()(plist_t node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, NodeDeleter>;

Error makeError(int64_t code, std::string text) {
  return Error::withDescription(PropertyList::errorDomain, code, std::move(text));
}

// Text the binary form can hold: well-formed UTF-8 with no NUL character.
bool isWritableText(std::string_view s) {
  const auto* p = reinterpret_cast<const unsigned char*>(s.data());
  size_t n = s.size();
  for (size_t i = 0; i < n;) {
    unsigned c = p[i];
    if (c == 0) return false;
    if (c < 0x80) {
      ++i;
      continue;
    }
    size_t extra;
    uint32_t code;
    if (c >= 0xc2 && c <= 0xdf)
      extra = 1, code = c & 0x1f;
    else if (c >= 0xe0 && c <= 0xef)
      extra = 2, code = c & 0x0f;
    else if (c >= 0xf0 && c <= 0xf4)
      extra = 3, code = c & 0x07;
    else
      return false;
    for (size_t k = 1; k <= extra; ++k) {
      if (i + k >= n || (p[i + k] & 0xc0) != 0x80) return false;
      code = (code << 6) | (p[i + k] & 0x3f);
    }
    if ((extra == 2 && code < 0x800) || (extra == 3 && code < 0x10000) || code > 0x10ffff ||
        (code >= 0xd800 && code <= 0xdfff))
      return false;
    i += extra + 1;
  }
  return true;
}

uint64_t bigEndian(const unsigned char* p, size_t size) {
  uint64_t v = 0;
  for (size_t i = 0; i < size; ++i) v = (v << 8) | p[i];
  return v;
}

// True when some string object of a binary property list holds a NUL
// character. The parser keeps such text, but reading it back as a dictionary
// key stops the process, so these lists are refused before parsing. Any
// structural fault is left for the parser to report.
bool binaryHasNulText(std::string_view data) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(data.data());
  const size_t size = data.size();
  if (size < 8 + 32) return false;
  const unsigned char* trailer = bytes + size - 32;
  size_t offsetSize = trailer[6];
  uint64_t objects = bigEndian(trailer + 8, 8);
  uint64_t tableOffset = bigEndian(trailer + 24, 8);
  if (offsetSize == 0 || offsetSize > 8 || tableOffset >= size) return false;
  uint64_t listed = std::min<uint64_t>(objects, (size - tableOffset) / offsetSize);
  for (uint64_t i = 0; i < listed; ++i) {
    uint64_t at = bigEndian(bytes + tableOffset + i * offsetSize, offsetSize);
    if (at >= size) continue;
    unsigned kind = bytes[at] >> 4;
    if (kind != 0x5 && kind != 0x6) continue;
    uint64_t count = bytes[at] & 0xf;
    uint64_t start = at + 1;
    if (count == 0xf) {
      if (start >= size || (bytes[start] >> 4) != 0x1) continue;
      size_t intSize = size_t{1} << (bytes[start] & 0x3);
      if (start + 1 + intSize > size) continue;
      count = bigEndian(bytes + start + 1, intSize);
      start += 1 + intSize;
    }
    uint64_t unit = kind == 0x5 ? 1 : 2;
    if (count > (size - start) / unit) continue;
    for (uint64_t k = 0; k < count; ++k) {
      const unsigned char* c = bytes + start + k * unit;
      if (c[0] == 0 && (unit == 1 || c[1] == 0)) return true;
    }
  }
  return false;
}

// The date as (seconds, microseconds) since 2001, both of the sign of the
// date (as the binary form adds them back), when it fits 32-bit seconds.
std::optional<std::pair<int32_t, int32_t>> referenceDate(double secondsSince1970) {
  double since2001 = secondsSince1970 - kReferenceDateOffset;
  if (!std::isfinite(since2001)) return std::nullopt;
  double whole = std::trunc(since2001);
  if (whole < std::numeric_limits<int32_t>::min() || whole > std::numeric_limits<int32_t>::max()) return std::nullopt;
  auto micros = static_cast<int32_t>(std::llround((since2001 - whole) * 1e6));
  if (micros == 1'000'000 || micros == -1'000'000) {
    whole += micros > 0 ? 1 : -1;
    micros = 0;
    if (whole < std::numeric_limits<int32_t>::min() || whole > std::numeric_limits<int32_t>::max()) return std::nullopt;
  }
  return std::make_pair(static_cast<int32_t>(whole), micros);
}

bool validAt(const Value& value, int depth) {
  if (depth > PropertyList::maxDepth) return false;
  switch (value.type()) {
    case Value::Type::Nil:
    case Value::Type::Null:
    case Value::Type::Object:
      return false;
    case Value::Type::String:
      return isWritableText(value.string());
    case Value::Type::Date:
      return referenceDate(value.dateSeconds()).has_value();
    case Value::Type::Array:
      for (const auto& item : value.arrayItems())
        if (!validAt(item, depth + 1)) return false;
      return true;
    case Value::Type::Dictionary:
      for (const auto& [key, item] : value.dictionaryItems())
        if (!isWritableText(key) || !validAt(item, depth + 1)) return false;
      return true;
    default:
      return true;
  }
}

// Builds the node tree of a value that passed validAt.
plist_t toNode(const Value& value) {
  switch (value.type()) {
    case Value::Type::Bool:
      return plist_new_bool(value.boolValue() ? 1 : 0);
    case Value::Type::Integer:
      return plist_new_uint(static_cast<uint64_t>(value.integerValue()));
    case Value::Type::Double:
      return plist_new_real(value.doubleValue());
    case Value::Type::String:
      return plist_new_string(value.string().c_str());
    case Value::Type::Bytes: {
      const auto& bytes = value.bytesData();
      return plist_new_data(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    case Value::Type::Date: {
      auto [seconds, micros] = *referenceDate(value.dateSeconds());
      return plist_new_date(seconds, micros);
    }
    case Value::Type::Array: {
      plist_t array = plist_new_array();
      for (const auto& item : value.arrayItems()) plist_array_append_item(array, toNode(item));
      return array;
    }
    case Value::Type::Dictionary: {
      plist_t dict = plist_new_dict();
      for (const auto& [key, item] : value.dictionaryItems()) plist_dict_set_item(dict, key.c_str(), toNode(item));
      return dict;
    }
    default:
      return nullptr;
  }
}

// Converts a parsed node tree; nil for a tree deeper than maxDepth, of an
// unknown kind, or holding text that is not UTF-8 (which could not be written back).
Value fromNode(plist_t node, int depth) {
  if (node == nullptr || depth > PropertyList::maxDepth) return Value();
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      uint8_t b = 0;
      plist_get_bool_val(node, &b);
      return Value(b != 0);
    }
    case PLIST_UINT: {
      uint64_t u = 0;
      plist_get_uint_val(node, &u);
      return Value(static_cast<long long>(u));
    }
    case PLIST_REAL: {
      double d = 0;
      plist_get_real_val(node, &d);
      return Value(d);
    }
    case PLIST_STRING:
    case PLIST_KEY: {
      uint64_t length = 0;
      const char* text = plist_get_string_ptr(node, &length);
      std::string_view view = text ? std::string_view(text, length) : std::string_view();
      return isWritableText(view) ? Value(view) : Value();
    }
    case PLIST_DATA: {
      uint64_t length = 0;
      const char* data = plist_get_data_ptr(node, &length);
      return Value::bytes(data ? std::string_view(data, length) : std::string_view());
    }
    case PLIST_DATE: {
      int32_t seconds = 0, micros = 0;
      plist_get_date_val(node, &seconds, &micros);
      // The fraction comes without its sign: it has the sign of the whole
      // seconds (a date less than a second before 2001 reads as after it).
      double fraction = std::abs(micros) / 1e6;
      return Value::date(kReferenceDateOffset + seconds + (seconds < 0 ? -fraction : fraction));
    }
    case PLIST_UID: {
      // A keyed archive's object reference reads as the dictionary it is written as in XML.
      uint64_t uid = 0;
      plist_get_uid_val(node, &uid);
      return Value(Value::Dictionary{{"CF$UID", Value(static_cast<long long>(uid))}});
    }
    case PLIST_ARRAY: {
      Value::Array items;
      uint32_t size = plist_array_get_size(node);
      items.reserve(size);
      for (uint32_t i = 0; i < size; ++i) {
        Value item = fromNode(plist_array_get_item(node, i), depth + 1);
        if (item.isNil()) return Value();
        items.push_back(std::move(item));
      }
      return Value(std::move(items));
    }
    case PLIST_DICT: {
      Value::Dictionary entries;
      plist_dict_iter iter = nullptr;
      plist_dict_new_iter(node, &iter);
      bool ok = true;
      for (;;) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, iter, &key, &item);
        if (item == nullptr) {
          std::free(key);
          break;
        }
        Value converted = fromNode(item, depth + 1);
        if (converted.isNil() || key == nullptr || !isWritableText(key))
          ok = false;
        else
          entries.insert_or_assign(key, std::move(converted));
        std::free(key);
        if (!ok) break;
      }
      std::free(iter);
      return ok ? Value(std::move(entries)) : Value();
    }
    default:
      return Value();
  }
}

}  // namespace

bool PropertyList::isPropertyList(const Value& value) { return validAt(value, 0); }

Value PropertyList::read(std::string_view data, Error* error, Format* format) {
  auto corrupt = [&](const char* why) {
    if (error) *error = makeError(readCorruptError, std::string("The property list is damaged: ") + why + ".");
    return Value();
  };
  if (data.empty()) return corrupt("no data");
  if (data.size() > std::numeric_limits<uint32_t>::max()) return corrupt("too large");
  auto length = static_cast<uint32_t>(data.size());
  bool binary = plist_is_binary(data.data(), length) != 0;
  if (binary && binaryHasNulText(data)) return corrupt("text with a NUL character");
  plist_t raw = nullptr;
  if (binary)
    plist_from_bin(data.data(), length, &raw);
  else
    plist_from_xml(data.data(), length, &raw);
  Node root(raw);
  if (!root) return corrupt(binary ? "unreadable binary form" : "unreadable XML form");
  Value value = fromNode(root.get(), 0);
  if (value.isNil()) return corrupt("text that is not UTF-8, too deep a nesting or an unknown kind of object");
  if (format) *format = binary ? Format::Binary : Format::XML;
  return value;
}

std::optional<std::string> PropertyList::write(const Value& value, Format format, Error* error) {
  if (!isPropertyList(value)) {
    if (error)
      *error = makeError(writeInvalidError,
                         "The value is not a property list (nil, null, text that is not UTF-8 or holds a "
                         "NUL, a date out of range or too deep a nesting).");
    return std::nullopt;
  }
  Node root(toNode(value));
  char* out = nullptr;
  uint32_t length = 0;
  if (format == Format::XML)
    plist_to_xml(root.get(), &out, &length);
  else
    plist_to_bin(root.get(), &out, &length);
  if (out == nullptr) {
    if (error) *error = makeError(writeInvalidError, "The property list could not be encoded.");
    return std::nullopt;
  }
  std::string encoded(out, length);
  if (format == Format::XML)
    plist_to_xml_free(out);
  else
    plist_to_bin_free(out);
  return encoded;
}

}  // namespace quillet::platform
