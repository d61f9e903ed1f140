#pragma once

#include <optional>
#include <string>

namespace quillet::backend {

// A way the registration server answers otherwise, for the next `count`
// answers it applies to (0: until cleared). Several can be on at once.
struct RegistrationSwitch {
  enum class Kind {
    Error,            // "error": "Error=<text>" instead of the answer (fetch and delete)
    StructuredToken,  // "structured_token": "token=|ID|<kid>|<text>|:<token>" (fetch)
    AuthToken,        // "auth_token": header "X-iid-auth" with the device's auth token for the sender (fetch)
    WrongRequestId,   // "wrong_request_id": "token=<kid + 1>:<token>" (fetch)
    ServerError,      // "server_error": HTTP 500 with the usual body
    EmptyBody,        // "empty_body": HTTP 200 with nothing
    Drop,             // "drop": closes the connection without an answer
  };
  Kind kind = Kind::Error;
  std::string text;  // Error: the reason ("PHONE_REGISTRATION_ERROR"); StructuredToken: the word ("SYNC")
  int count = 0;

  // The kind of that name (as above), or nullopt.
  static std::optional<Kind> kindNamed(const std::string& name);
};

}  // namespace quillet::backend
