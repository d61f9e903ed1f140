// Arbitrary bytes as a server's certificate chain and as the pinned
// certificates: the first byte picks the pinning mode and the flags, then
// chunks of (two length bytes, bytes) are the chain, leaf first; the same
// chunks are pinned. Evaluation must answer, never crash; a chain that does
// not parse must never be accepted by a pinning policy.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "http/security/NKSecurityPolicy.h"
#include "http/security/NKServerTrust.h"
#include "platform/log/Log.h"

using quillet::http::NKSecurityPolicy;
using quillet::http::NKServerTrust;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool quiet = [] {
    quillet::platform::Log::setStandardErrorEnabled(false);
    return true;
  }();
  (void)quiet;
  if (size < 1) return 0;
  const uint8_t flags = data[0];
  std::vector<NKServerTrust::Bytes> chunks;
  size_t at = 1;
  while (at + 2 <= size && chunks.size() < 4) {
    const size_t length = std::min<size_t>((size_t{data[at]} << 8) | data[at + 1], size - at - 2);
    chunks.emplace_back(data + at + 2, data + at + 2 + length);
    at += 2 + length;
  }
  const auto mode = static_cast<quillet::http::NKSSLPinningMode>(flags % 3);
  auto policy = NKSecurityPolicy::policyWithPinningMode(mode);
  policy->allowInvalidCertificates = (flags & 0x10) != 0;
  policy->validatesDomainName = (flags & 0x20) != 0;
  policy->setPinnedCertificates(chunks);
  NKServerTrust trust(chunks);
  const bool accepted = policy->evaluateServerTrust(trust, std::string("fuzz.quillet.test"));
  if (accepted && mode != quillet::http::NKSSLPinningModeNone && trust.certificateCount() == 0) std::abort();
  return 0;
}
