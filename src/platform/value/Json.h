#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::platform {

// Arrays and dictionaries nested deeper than this are refused by jsonDecode.
inline constexpr size_t kJsonMaxDepth = 512;

// Decodes UTF-8 JSON text (a leading byte-order mark is skipped) in the
// manner of the phone's JSON reader: integers that fit 64 bits stay integers,
// larger ones and reals become reals, true/false booleans, null the null
// object; a repeated key keeps its last value. The top level must be an array
// or a dictionary unless `allowFragments`. On failure gives nil and, when
// `error` is given, an Error of domain "NSCocoaErrorDomain", code 3840, with
// the reason under userInfo "NSDebugDescription". Thread-safe.
Value jsonDecode(std::string_view bytes, Error* error = nullptr, bool allowFragments = false);

// Encodes a value as UTF-8 JSON: compact ({"a":1,"b":[true,null]}) or, when
// `pretty`, indented by two spaces with " : " between key and value; keys in
// sorted order, "/" written as "\/", reals in their description() form.
// Nil, bytes, dates, non-finite reals and strings that are not well-formed
// UTF-8 cannot be encoded: the result is "" and `error` (when given) is set
// (domain "NSCocoaErrorDomain", code 3840). Thread-safe.
std::string jsonEncode(const Value& value, bool pretty = false, Error* error = nullptr);

}  // namespace quillet::platform
