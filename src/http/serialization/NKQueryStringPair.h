#pragma once

#include <string>
#include <vector>

#include "platform/value/Value.h"

namespace quillet::http {

// One field and value of a query string, and the flattening of nested
// parameters into such pairs. Plain values; pure functions.
class NKQueryStringPair {
 public:
  NKQueryStringPair(platform::Value field, platform::Value value)
      : field_(std::move(field)), value_(std::move(value)) {}

  const platform::Value& field() const { return field_; }
  const platform::Value& value() const { return value_; }

  // "field=value", both percent-escaped ("[]." stay in the field); the field
  // alone when the value is nil or the null object.
  std::string URLEncodedStringValue() const;

  // Flattens `value` under `key` (nil at the top): dictionaries by sorted key
  // as "key[sub]", arrays element by element as "key[]", anything else one pair.
  static std::vector<NKQueryStringPair> pairsFromKeyAndValue(const platform::Value& key, const platform::Value& value);
  // The pairs of `parameters`, encoded and joined with "&".
  static std::string queryStringFromParameters(const platform::Value& parameters);

 private:
  platform::Value field_;
  platform::Value value_;
};

}  // namespace quillet::http
