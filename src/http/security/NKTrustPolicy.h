#pragma once

#include <optional>
#include <string>

namespace quillet::http {

// What a trust evaluation checks besides the chain itself. The SSL policy
// checks that the leaf may serve TLS and, with a host, that it names the
// host (a DNS name or an IP address); the basic X.509 policy checks only the
// chain (signatures, dates, a trusted anchor). A plain value.
struct NKTrustPolicy {
  enum Kind { kSSL, kBasicX509 };

  static NKTrustPolicy SSL(std::optional<std::string> host) { return NKTrustPolicy{kSSL, std::move(host)}; }
  static NKTrustPolicy basicX509() { return NKTrustPolicy{kBasicX509, std::nullopt}; }

  Kind kind = kBasicX509;
  std::optional<std::string> host;  // for kSSL; none = any host
};

}  // namespace quillet::http
