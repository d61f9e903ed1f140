#include "backend/registration/RegistrationSwitch.h"

namespace quillet::backend {

std::optional<RegistrationSwitch::Kind> RegistrationSwitch::kindNamed(const std::string& name) {
  if (name == "error") return Kind::Error;
  if (name == "structured_token") return Kind::StructuredToken;
  if (name == "auth_token") return Kind::AuthToken;
  if (name == "wrong_request_id") return Kind::WrongRequestId;
  if (name == "server_error") return Kind::ServerError;
  if (name == "empty_body") return Kind::EmptyBody;
  if (name == "drop") return Kind::Drop;
  return std::nullopt;
}

}  // namespace quillet::backend
