#pragma once

#include <optional>
#include <string>

#include "platform/net/HttpResponse.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::http {

// The response serializers' error domain, user-info keys, and how an error
// rides inside another one's user info. Pure functions.
class NKSerializationError {
 public:
  static constexpr const char* kDomain = "com.kriozugin.error.serialization.response";
  static constexpr const char* kResponseKey = "com.kriozugin.serialization.response.error.response";
  static constexpr const char* kDataKey = "com.kriozugin.serialization.response.error.data";
  static constexpr const char* kDescriptionKey = "NSLocalizedDescription";
  static constexpr const char* kFailureReasonKey = "NSLocalizedFailureReason";
  static constexpr const char* kFailingURLKey = "NSErrorFailingURLKey";
  static constexpr const char* kUnderlyingErrorKey = "NSUnderlyingError";
  static constexpr int kCannotDecodeContentData = -1016;
  static constexpr int kBadServerResponse = -1011;

  // A response as a user-info value: "URL", "statusCode", "MIMEType", "allHeaderFields".
  static platform::Value responseValue(const platform::HttpResponse& response);
  // An error as a user-info value ("domain", "code", "userInfo") and back.
  static platform::Value errorValue(const platform::Error& error);
  static std::optional<platform::Error> errorFromValue(const platform::Value& value);
  // The error stored under kUnderlyingErrorKey, if any.
  static std::optional<platform::Error> underlyingError(const platform::Error& error);
  // `error` with `underlying` as its underlying error; `underlying` alone when
  // there is no error; `error` as it stands when it already has one.
  static std::optional<platform::Error> withUnderlyingError(const std::optional<platform::Error>& error,
                                                            const std::optional<platform::Error>& underlying);
  // True when `error` or its underlying error has `code` in `domain`.
  static bool hasCodeInDomain(const platform::Error& error, int64_t code, const std::string& domain);
};

}  // namespace quillet::http
