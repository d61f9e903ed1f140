#include "http/security/NKSecurityPolicy.h"

#include <algorithm>

#include "platform/files/AtomicFile.h"
#include "platform/files/FileSystem.h"
#include "platform/log/Log.h"

namespace quillet::http {
namespace {

bool contains(const std::vector<NKSecurityPolicy::Bytes>& list, const NKSecurityPolicy::Bytes& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

}  // namespace

std::shared_ptr<NKSecurityPolicy> NKSecurityPolicy::defaultPolicy() { return std::make_shared<NKSecurityPolicy>(); }

std::shared_ptr<NKSecurityPolicy> NKSecurityPolicy::policyWithPinningMode(NKSSLPinningMode mode) {
  auto policy = std::make_shared<NKSecurityPolicy>();
  policy->SSLPinningMode = mode;
  policy->setPinnedCertificates(defaultPinnedCertificates());
  return policy;
}

const std::vector<NKSecurityPolicy::Bytes>& NKSecurityPolicy::defaultPinnedCertificates() {
  // Kept for the process: a policy on the network thread may read it at exit.
  static const auto* certificates =
      new std::vector<Bytes>(certificatesInDirectory(platform::FileSystem::standard()->resourceDirectory()));
  return *certificates;
}

std::vector<NKSecurityPolicy::Bytes> NKSecurityPolicy::certificatesInDirectory(const std::filesystem::path& directory) {
  std::vector<std::filesystem::path> paths;
  std::error_code error;
  for (std::filesystem::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
    if (it->path().extension() == ".cer" && it->is_regular_file(error)) paths.push_back(it->path());
  }
  std::sort(paths.begin(), paths.end());
  std::vector<Bytes> certificates;
  for (const auto& path : paths) {
    platform::Error readError;
    if (auto text = platform::AtomicFile::read(path, &readError)) {
      certificates.emplace_back(text->begin(), text->end());
    } else {
      platform::Log::writef("NKSecurityPolicy: could not read the certificate %s", path.string().c_str());
    }
  }
  return certificates;
}

std::optional<NKSecurityPolicy::Bytes> NKSecurityPolicy::publicKeyForCertificate(
    const Bytes& certificate, const std::shared_ptr<platform::Clock>& clock) {
  if (!NKCertificate::createWithData(certificate)) {
    platform::Log::writef("NKSecurityPolicy: a pinned certificate (%zu bytes) does not parse; no public key",
                          certificate.size());
    return std::nullopt;
  }
  NKServerTrust trust({certificate}, clock);
  trust.setPolicy(NKTrustPolicy::basicX509());
  trust.evaluate();  // the key is read whatever the verdict
  auto key = trust.copyPublicKey();
  if (!key) platform::Log::write("NKSecurityPolicy: a pinned certificate has no usable public key");
  return key;
}

void NKSecurityPolicy::setPinnedCertificates(std::vector<Bytes> certificates) {
  pinnedCertificates_.clear();
  pinnedPublicKeys_.clear();
  for (auto& certificate : certificates) {
    if (contains(pinnedCertificates_, certificate)) continue;
    if (auto key = publicKeyForCertificate(certificate, clock)) pinnedPublicKeys_.push_back(std::move(*key));
    pinnedCertificates_.push_back(std::move(certificate));
  }
}

bool NKSecurityPolicy::usesPlatformEvaluation() const {
  return SSLPinningMode == NKSSLPinningModeNone && validatesDomainName && !allowInvalidCertificates;
}

bool NKSecurityPolicy::evaluateServerTrust(NKServerTrust& trust) const {
  return evaluateServerTrust(trust, std::nullopt);
}

bool NKSecurityPolicy::evaluateServerTrust(const platform::HttpServerTrust& trust, const std::string& domain) const {
  NKServerTrust serverTrust = NKServerTrust::createWithPlatformTrust(trust, clock);
  return evaluateServerTrust(serverTrust, domain);
}

bool NKSecurityPolicy::evaluateServerTrust(NKServerTrust& trust, const std::optional<std::string>& domain) const {
  trust.setPolicy(validatesDomainName ? NKTrustPolicy::SSL(domain) : NKTrustPolicy::basicX509());
  if (SSLPinningMode == NKSSLPinningModeNone) {
    return allowInvalidCertificates || NKServerTrust::isValidResult(trust.evaluate());
  }
  if (!NKServerTrust::isValidResult(trust.evaluate()) && !allowInvalidCertificates) return false;

  std::vector<Bytes> serverCertificates;
  for (size_t i = 0; i < trust.certificateCount(); ++i) serverCertificates.push_back(trust.certificateDataAtIndex(i));

  switch (SSLPinningMode) {
    case NKSSLPinningModeCertificate:
      return certificateChainIsPinned(trust, serverCertificates);
    case NKSSLPinningModePublicKey:
      return publicKeysArePinned(serverCertificates);
    default:
      return false;
  }
}

bool NKSecurityPolicy::certificateChainIsPinned(NKServerTrust& trust,
                                                const std::vector<Bytes>& serverCertificates) const {
  trust.setAnchorCertificates(pinnedCertificates_);
  if (!NKServerTrust::isValidResult(trust.evaluate())) return false;
  if (!validatesCertificateChain) return true;
  const auto pinned =
      std::count_if(serverCertificates.begin(), serverCertificates.end(),
                    [&](const Bytes& certificate) { return contains(pinnedCertificates_, certificate); });
  return !serverCertificates.empty() && static_cast<size_t>(pinned) == serverCertificates.size();
}

bool NKSecurityPolicy::publicKeysArePinned(const std::vector<Bytes>& serverCertificates) const {
  std::vector<Bytes> keys;
  for (const auto& certificate : serverCertificates) {
    if (auto key = publicKeyForCertificate(certificate, clock)) keys.push_back(std::move(*key));
    if (!validatesCertificateChain) break;  // the leaf alone
  }
  const auto matching =
      std::count_if(keys.begin(), keys.end(), [&](const Bytes& key) { return contains(pinnedPublicKeys_, key); });
  if (validatesCertificateChain) {
    return !serverCertificates.empty() && static_cast<size_t>(matching) == serverCertificates.size();
  }
  return matching >= 1;
}

}  // namespace quillet::http
