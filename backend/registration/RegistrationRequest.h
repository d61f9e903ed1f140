#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillet::backend {

// A registration request body, read strictly in the client's field order.
// The body is split at "&" and each field at its first "=" only; nothing is
// unescaped, since the client escapes nothing (pub2 holds "+", "/", "=" and
// CR LF). A plain value.
//   fetch:  sender, app, device, app_ver, X-subtype, X-scope, plat=2, X-kid,
//           [X-msg_ver], appid, pub2, sig, [apns_token]
//   delete: device, app, app_ver, X-scope, X-kid, delete=true, [appid, pub2, sig]
struct RegistrationRequest {
  bool isDelete = false;
  std::string sender;  // fetch only
  std::string app;
  std::string device;
  std::string appVersion;
  std::string scope;
  std::string requestId;         // "X-kid", decimal
  std::string messagingVersion;  // "X-msg_ver", optional
  bool hasKeyPart = false;       // appid, pub2 and sig present (always for a fetch)
  std::string appId;
  std::string pub2;
  std::string sig;
  std::string pushToken;  // optional

  // The request in `body`, or nullopt with a one-line reason.
  static std::optional<RegistrationRequest> parse(const std::string& body, std::string* reason);
  // The body's fields in order, split as above.
  static std::vector<std::pair<std::string, std::string>> fields(const std::string& body);
};

}  // namespace quillet::backend
