#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "http/security/NKServerTrust.h"
#include "platform/clock/Clock.h"
#include "platform/net/HttpServerTrust.h"

namespace quillet::http {

// What a server's certificates are held against besides the chain's trust.
// Any other value is a mode that refuses every server.
enum NKSSLPinningMode : int {
  NKSSLPinningModeNone = 0,
  NKSSLPinningModePublicKey = 1,
  NKSSLPinningModeCertificate = 2,
};

// Decides whether a TLS server's trust is accepted. Settings (the fields and
// setPinnedCertificates) are made before the policy is shared; from then on
// it is read-only and evaluation is thread-safe.
class NKSecurityPolicy {
 public:
  using Bytes = NKServerTrust::Bytes;

  // Mode none, no pins: the chain and the domain name are validated.
  static std::shared_ptr<NKSecurityPolicy> defaultPolicy();
  // `mode`, pinned to defaultPinnedCertificates().
  static std::shared_ptr<NKSecurityPolicy> policyWithPinningMode(NKSSLPinningMode mode);
  // The data of every ".cer" file in the app's resource directory, read on
  // the first call only (thread-safe) and kept for the process.
  static const std::vector<Bytes>& defaultPinnedCertificates();
  // The data of every ".cer" file directly in `directory`, by file name; a
  // missing directory gives none, an unreadable file is skipped with one log line.
  static std::vector<Bytes> certificatesInDirectory(const std::filesystem::path& directory);

  // The public key of one certificate, as a one-certificate trust under the
  // basic X.509 policy gives it; nothing (and one log line) for data that
  // does not parse or holds no usable key.
  static std::optional<Bytes> publicKeyForCertificate(const Bytes& certificate,
                                                      const std::shared_ptr<platform::Clock>& clock = nullptr);

  // Duplicates are dropped, the first of each kept in order; the pinned
  // public keys are derived again.
  void setPinnedCertificates(std::vector<Bytes> certificates);
  const std::vector<Bytes>& pinnedCertificates() const { return pinnedCertificates_; }
  const std::vector<Bytes>& pinnedPublicKeys() const { return pinnedPublicKeys_; }

  // True when the HTTP session's own checks (chain to the system's store,
  // host name) give this policy's answer, so requests need no trust hook.
  bool usesPlatformEvaluation() const;

  // True when the server may be trusted. The trust is changed (policy,
  // anchors, evaluated chain). Without a domain the SSL policy checks no host.
  bool evaluateServerTrust(NKServerTrust& trust) const;
  bool evaluateServerTrust(NKServerTrust& trust, const std::optional<std::string>& domain) const;
  // The same for what a handshake showed; called on the session's thread.
  bool evaluateServerTrust(const platform::HttpServerTrust& trust, const std::string& domain) const;

  NKSSLPinningMode SSLPinningMode = NKSSLPinningModeNone;
  bool validatesCertificateChain = true;
  bool validatesDomainName = true;
  bool allowInvalidCertificates = false;
  // Validity dates are read against this clock; null = the system clock.
  std::shared_ptr<platform::Clock> clock;

 private:
  bool certificateChainIsPinned(NKServerTrust& trust, const std::vector<Bytes>& serverCertificates) const;
  bool publicKeysArePinned(const std::vector<Bytes>& serverCertificates) const;

  std::vector<Bytes> pinnedCertificates_;
  std::vector<Bytes> pinnedPublicKeys_;
};

}  // namespace quillet::http
