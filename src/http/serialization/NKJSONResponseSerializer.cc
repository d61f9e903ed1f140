#include "http/serialization/NKJSONResponseSerializer.h"

#include "http/serialization/NKSerializationError.h"
#include "http/serialization/NKTextDecoding.h"
#include "platform/value/Format.h"
#include "platform/value/Json.h"

namespace quillet::http {

using platform::Error;
using platform::Value;
using E = NKSerializationError;

namespace {

Value removingKeysWithNullValues(const Value& value) {
  if (value.isArray()) {
    Value::Array items;
    items.reserve(value.arrayItems().size());
    for (const Value& item : value.arrayItems()) items.push_back(removingKeysWithNullValues(item));
    return Value(std::move(items));
  }
  if (value.isDictionary()) {
    Value::Dictionary entries;
    for (const auto& [key, item] : value.dictionaryItems()) {
      if (item.isNil() || item.isNull()) continue;
      entries.emplace(key, removingKeysWithNullValues(item));
    }
    return Value(std::move(entries));
  }
  return value;
}

}  // namespace

std::shared_ptr<NKJSONResponseSerializer> NKJSONResponseSerializer::serializer() {
  return std::make_shared<NKJSONResponseSerializer>();
}

NKJSONResponseSerializer::NKJSONResponseSerializer() {
  acceptableContentTypes = std::set<std::string>{"application/json", "text/json", "text/javascript"};
}

Value NKJSONResponseSerializer::responseObjectForResponse(const platform::HttpResponse* response,
                                                          const std::vector<uint8_t>* data,
                                                          std::optional<Error>* error) const {
  if (!validateResponse(response, data, error)) {
    if (!error || (*error && E::hasCodeInDomain(**error, E::kCannotDecodeContentData, E::kDomain))) return Value();
  }
  if (!data) return Value();

  std::string encoding = stringEncoding;
  if (response && NKTextDecoding::isKnownEncoding(response->textEncodingName())) {
    encoding = response->textEncodingName();
  }
  const NKTextDecoding::Result text = NKTextDecoding::decode(*data, encoding);
  if (text.outcome == NKTextDecoding::Outcome::NotText || text.text == u" ") return Value();

  Value object;
  std::optional<Error> serializationError;
  if (text.outcome == NKTextDecoding::Outcome::NotUTF8) {
    Value::Dictionary info;
    info.emplace(E::kDescriptionKey, Value("Data failed decoding as a UTF-8 string"));
    info.emplace(E::kFailureReasonKey,
                 Value(platform::format("Could not decode string: %@", NKTextDecoding::describe(text.text))));
    serializationError = Error(E::kDomain, E::kCannotDecodeContentData, Value(std::move(info)));
  } else {
    if (text.utf8.empty()) return Value();
    Error jsonError;
    object = platform::jsonDecode(text.utf8, &jsonError, (readingOptions & kReadingAllowFragments) != 0);
    if (object.isNil()) serializationError = jsonError;
  }
  if (removesKeysWithNullValues && !object.isNil()) object = removingKeysWithNullValues(object);
  if (error) *error = E::withUnderlyingError(serializationError, *error);
  return object;
}

}  // namespace quillet::http
