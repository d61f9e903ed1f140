#pragma once

#include <string>

namespace quillet::http {

// The platform's short text for an HTTP status code ("not found" for 404),
// or the text of its class ("client error") for a code it does not name.
class NKHTTPStatusText {
 public:
  static std::string localizedStringForStatusCode(int statusCode);
};

}  // namespace quillet::http
