#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "http/security/NKCertificate.h"
#include "http/security/NKTrustPolicy.h"
#include "platform/clock/Clock.h"
#include "platform/net/HttpServerTrust.h"

namespace quillet::http {

// The outcome of an evaluation, with the platform's values. Only proceed and
// unspecified mean that the chain may be trusted.
enum NKTrustResultType : int {
  NKTrustResultInvalid = 0,
  NKTrustResultProceed = 1,
  NKTrustResultDeny = 3,
  NKTrustResultUnspecified = 4,
  NKTrustResultRecoverableTrustFailure = 5,
  NKTrustResultFatalTrustFailure = 6,
  NKTrustResultOtherError = 7,
};

// A server's certificate chain with the rules to judge it by: a policy
// (basic X.509 until set) and the anchors to trust, the system's default
// store until anchors are set, then those anchors alone (any one of them,
// self-signed or not, ends a chain). Validity dates are read against the
// clock. One object is used by one thread at a time.
class NKServerTrust {
 public:
  using Bytes = NKCertificate::Bytes;

  // `chain` in DER, leaf first. A certificate that does not parse is left
  // out with one log line; when that is the leaf, the trust has no
  // certificates and every evaluation gives NKTrustResultInvalid.
  // A null clock means the system clock.
  explicit NKServerTrust(const std::vector<Bytes>& chain, std::shared_ptr<platform::Clock> clock = nullptr);
  // The chain a TLS handshake showed (the host is not taken: a policy names it).
  static NKServerTrust createWithPlatformTrust(const platform::HttpServerTrust& trust,
                                               std::shared_ptr<platform::Clock> clock = nullptr);

  void setPolicy(NKTrustPolicy policy) { policy_ = std::move(policy); }
  // From now on only these certificates are trusted; ones that do not parse
  // are left out with one log line. An empty list trusts nothing.
  void setAnchorCertificates(const std::vector<Bytes>& anchors);

  // Evaluates the chain. Afterwards the certificates are those of the chain
  // the evaluation built (leaf first, up to the anchor when one was found).
  NKTrustResultType evaluate();
  static bool isValidResult(NKTrustResultType result) {
    return result == NKTrustResultProceed || result == NKTrustResultUnspecified;
  }

  size_t certificateCount() const { return chain_.size(); }
  const Bytes& certificateDataAtIndex(size_t index) const { return chain_.at(index)->data(); }
  // The leaf's public key (SubjectPublicKeyInfo DER), or nothing without a
  // usable one.
  std::optional<Bytes> copyPublicKey() const;

 private:
  using Certificates = std::vector<std::shared_ptr<const NKCertificate>>;

  static Certificates parse(const std::vector<Bytes>& data, const char* role);

  std::shared_ptr<platform::Clock> clock_;
  Certificates certificates_;  // as given
  Certificates chain_;         // as last evaluated
  std::optional<Certificates> anchors_;
  NKTrustPolicy policy_ = NKTrustPolicy::basicX509();
};

}  // namespace quillet::http
