#include "http/serialization/NKSerializationError.h"

namespace quillet::http {

using platform::Error;
using platform::Value;

Value NKSerializationError::responseValue(const platform::HttpResponse& response) {
  Value::Dictionary headers;
  for (const auto& [name, value] : response.headers.fields()) headers.emplace(name, Value(value));
  Value::Dictionary info;
  info.emplace("URL", Value(response.url));
  info.emplace("statusCode", Value(response.statusCode));
  info.emplace("MIMEType", Value(response.mimeType()));
  info.emplace("allHeaderFields", Value(std::move(headers)));
  return Value(std::move(info));
}

Value NKSerializationError::errorValue(const Error& error) {
  Value::Dictionary info;
  info.emplace("domain", Value(error.domain));
  info.emplace("code", Value(static_cast<long long>(error.code)));
  if (!error.userInfo.isNil()) info.emplace("userInfo", error.userInfo);
  return Value(std::move(info));
}

std::optional<Error> NKSerializationError::errorFromValue(const Value& value) {
  if (!value["domain"].isString() || !value["code"].isNumber()) return std::nullopt;
  return Error(value["domain"].string(), value["code"].integerValue(), value["userInfo"]);
}

std::optional<Error> NKSerializationError::underlyingError(const Error& error) {
  return errorFromValue(error.userInfo[kUnderlyingErrorKey]);
}

std::optional<Error> NKSerializationError::withUnderlyingError(const std::optional<Error>& error,
                                                               const std::optional<Error>& underlying) {
  if (!error) return underlying;
  if (!underlying || !error->userInfo[kUnderlyingErrorKey].isNil()) return error;
  Error combined = *error;
  combined.userInfo.set(kUnderlyingErrorKey, errorValue(*underlying));
  return combined;
}

bool NKSerializationError::hasCodeInDomain(const Error& error, int64_t code, const std::string& domain) {
  if (error.domain == domain && error.code == code) return true;
  auto underlying = underlyingError(error);
  return underlying && underlying->domain == domain && underlying->code == code;
}

}  // namespace quillet::http
