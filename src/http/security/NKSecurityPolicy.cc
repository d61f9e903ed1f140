#include "http/security/NKSecurityPolicy.h"

namespace quillet::http {

std::shared_ptr<NKSecurityPolicy> NKSecurityPolicy::defaultPolicy() { return std::make_shared<NKSecurityPolicy>(); }

bool NKSecurityPolicy::usesPlatformEvaluation() const { return validatesDomainName && !allowInvalidCertificates; }

bool NKSecurityPolicy::evaluateServerTrust(const platform::HttpServerTrust& trust, const std::string& domain) const {
  if (allowInvalidCertificates) return true;
  const bool hostValid = !validatesDomainName || (trust.hostMatches && trust.host == domain);
  return trust.chainTrusted && hostValid;
}

}  // namespace quillet::http
