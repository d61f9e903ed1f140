#pragma once

#include <string>

#include "platform/value/Error.h"

namespace quillet::news {

// The error domains of the services the shell calls.
inline constexpr const char* kContextErrorDomain = "com.stikri.context";
inline constexpr const char* kMSGErrorDomain = "com.stikri.msg";
inline constexpr const char* kInstanceIDErrorDomain = "com.stikri.iid";

// An error of `domain` and `code` whose localized description is `description`.
platform::Error serviceError(const char* domain, int64_t code, const std::string& description);

}  // namespace quillet::news
