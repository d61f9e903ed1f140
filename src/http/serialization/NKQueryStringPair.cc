#include "http/serialization/NKQueryStringPair.h"

#include "platform/text/PercentEscape.h"

namespace quillet::http {
namespace {

using platform::PercentEscape;
using platform::Value;

// Characters a query keeps as they stand: the legacy URL-legal set without
// the delimiters that would break a field or value apart.
constexpr std::string_view kEscapedDelimiters = ":/?&=;+!@#$()',*";

const std::string& fieldAllowed() {
  static const std::string allowed =
      PercentEscape::allowedSet(PercentEscape::kLegacyUrlLegal, kEscapedDelimiters, "[].");
  return allowed;
}

const std::string& valueAllowed() {
  static const std::string allowed = PercentEscape::allowedSet(PercentEscape::kLegacyUrlLegal, kEscapedDelimiters);
  return allowed;
}

void appendPairs(const Value& key, const Value& value, std::vector<NKQueryStringPair>& out) {
  if (value.isDictionary()) {
    // The map keeps its keys sorted, which is the order of their descriptions.
    for (const auto& [name, item] : value.dictionaryItems()) {
      if (item.isNil()) continue;
      // "%@[%@]" of the outer key and this one, or the bare key at the top.
      appendPairs(key.isNil() ? Value(name) : Value(key.description() + "[" + name + "]"), item, out);
    }
  } else if (value.isArray()) {
    const Value arrayKey(key.description() + "[]");  // "%@[]"
    for (const Value& item : value.arrayItems()) appendPairs(arrayKey, item, out);
  } else {
    out.emplace_back(key, value);
  }
}

}  // namespace

std::string NKQueryStringPair::URLEncodedStringValue() const {
  std::string field = PercentEscape::escape(field_.description(), fieldAllowed());
  if (value_.isNil() || value_.isNull()) return field;
  return field + "=" + PercentEscape::escape(value_.description(), valueAllowed());
}

std::vector<NKQueryStringPair> NKQueryStringPair::pairsFromKeyAndValue(const Value& key, const Value& value) {
  std::vector<NKQueryStringPair> pairs;
  appendPairs(key, value, pairs);
  return pairs;
}

std::string NKQueryStringPair::queryStringFromParameters(const Value& parameters) {
  std::string query;
  for (const NKQueryStringPair& pair : pairsFromKeyAndValue(Value(), parameters)) {
    if (!query.empty()) query += '&';
    query += pair.URLEncodedStringValue();
  }
  return query;
}

}  // namespace quillet::http
