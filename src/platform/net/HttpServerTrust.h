#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace quillet::platform {

// What a TLS server showed when a connection opened, for a caller that
// judges the server's trust itself. A plain value.
struct HttpServerTrust {
  std::string host;  // the host the request named
  // The server's certificates in DER, leaf first, as the server sent them.
  std::vector<std::vector<uint8_t>> certificateChain;
  // The chain leads to a trusted authority (the session's caFile or the
  // system's store) and every certificate is within its dates.
  bool chainTrusted = false;
  // The leaf certificate names `host`.
  bool hostMatches = false;
};

// Decides whether to go on with a TLS server, during the handshake, on the
// session's own thread (keep it short; do not call back into the session).
// With a hook the transport's own checks are advisory only: returning true
// accepts the server whatever chainTrusted and hostMatches say; returning
// false ends the request with "cancelled" (-999).
using HttpServerTrustHook = std::function<bool(const HttpServerTrust& trust)>;

}  // namespace quillet::platform
