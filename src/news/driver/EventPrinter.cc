#include "news/driver/EventPrinter.h"

#include <cmath>

#include "platform/value/Json.h"

namespace quillet::news {

using platform::Value;

namespace {

// JSON for `value`; values JSON cannot hold (bytes, dates) are written by their "%@" text.
Value encodable(const Value& value) {
  switch (value.type()) {
    case Value::Type::Nil:
      return Value::null();
    case Value::Type::Bytes:
    case Value::Type::Date:
      return Value(value.description());
    case Value::Type::Double: {
      platform::Error error;
      if (platform::jsonEncode(Value::array({value}), false, &error).empty()) return Value(value.description());
      return value;
    }
    case Value::Type::Array: {
      Value::Array items;
      for (const Value& item : value.arrayItems()) items.push_back(encodable(item));
      return Value(std::move(items));
    }
    case Value::Type::Dictionary: {
      Value::Dictionary items;
      for (const auto& [key, item] : value.dictionaryItems()) items[key] = encodable(item);
      return Value(std::move(items));
    }
    default:
      return value;
  }
}

}  // namespace

void EventPrinter::print(const std::string& event, Value fields) {
  Value object = fields.isDictionary() ? encodable(fields) : Value(Value::Dictionary{});
  if (now_) object.set("time", Value(std::round(now_() * 1000.0) / 1000.0));
  if (json_) {
    object.set("event", event);
    out_ << platform::jsonEncode(object) << '\n';
  } else {
    out_ << event;
    if (object.count() != 0) out_ << ' ' << platform::jsonEncode(object);
    out_ << '\n';
  }
  out_.flush();
}

void EventPrinter::print(const platform::UiEvent& event) {
  Value fields = event.toValue();
  const std::string kind = fields["kind"].isString() ? fields["kind"].string() : "ui";
  fields.set("kind", Value());
  print(kind, std::move(fields));
}

}  // namespace quillet::news
