#pragma once

#include <memory>
#include <string>

#include "platform/net/HttpServerTrust.h"

namespace quillet::http {

// Decides whether a TLS server's trust is accepted. The default policy is the
// platform's own evaluation (chain to a trusted authority, host name
// checked), which the HTTP session performs itself; only a policy that
// differs from it needs to judge servers. Settings are made before the
// policy is shared; evaluation is thread-safe.
class NKSecurityPolicy {
 public:
  static std::shared_ptr<NKSecurityPolicy> defaultPolicy();
  virtual ~NKSecurityPolicy() = default;

  // True when the session's own evaluation gives this policy's answer, so
  // requests need no trust hook of their own.
  virtual bool usesPlatformEvaluation() const;
  // True when the server may be trusted for `domain`.
  virtual bool evaluateServerTrust(const platform::HttpServerTrust& trust, const std::string& domain) const;

  bool validatesDomainName = true;
  bool allowInvalidCertificates = false;
};

}  // namespace quillet::http
