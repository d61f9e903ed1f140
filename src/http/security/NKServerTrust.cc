#include "http/security/NKServerTrust.h"

#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include "platform/log/Log.h"

namespace quillet::http {
namespace {

// The system's trusted authorities, loaded once and shared by every
// evaluation (a store is safe for concurrent verifications). Never freed:
// a handshake on the network thread may still use it at exit.
X509_STORE* systemStore() {
  static X509_STORE* store = [] {
    X509_STORE* made = X509_STORE_new();
    if (made && X509_STORE_set_default_paths(made) != 1) {
      platform::Log::write("NKServerTrust: the system's certificate store could not be loaded");
    }
    return made;
  }();
  return store;
}

struct StoreFree {
  void operator()(X509_STORE* store) const { X509_STORE_free(store); }
};
struct ContextFree {
  void operator()(X509_STORE_CTX* context) const { X509_STORE_CTX_free(context); }
};
struct StackFree {
  void operator()(STACK_OF(X509) * stack) const { sk_X509_free(stack); }  // borrowed entries
};

// The SSL policy's checks: the server purpose, and the host when named.
void applySSLPolicy(X509_STORE_CTX* context, const std::optional<std::string>& host) {
  X509_STORE_CTX_set_purpose(context, X509_PURPOSE_SSL_SERVER);
  if (!host || host->empty()) return;
  std::string name = *host;
  if (name.size() > 2 && name.front() == '[' && name.back() == ']') name = name.substr(1, name.size() - 2);
  X509_VERIFY_PARAM* param = X509_STORE_CTX_get0_param(context);
  if (X509_VERIFY_PARAM_set1_ip_asc(param, name.c_str()) == 1) return;
  X509_VERIFY_PARAM_set_hostflags(param, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
  X509_VERIFY_PARAM_set1_host(param, name.data(), name.size());
}

}  // namespace

NKServerTrust::NKServerTrust(const std::vector<Bytes>& chain, std::shared_ptr<platform::Clock> clock)
    : clock_(clock ? std::move(clock) : platform::Clock::system()) {
  certificates_ = parse(chain, "server");
  if (!chain.empty() && (certificates_.empty() || certificates_.front()->data() != chain.front())) {
    certificates_.clear();  // without its leaf the chain stands for nobody
  }
  chain_ = certificates_;
}

NKServerTrust NKServerTrust::createWithPlatformTrust(const platform::HttpServerTrust& trust,
                                                     std::shared_ptr<platform::Clock> clock) {
  return NKServerTrust(trust.certificateChain, std::move(clock));
}

NKServerTrust::Certificates NKServerTrust::parse(const std::vector<Bytes>& data, const char* role) {
  Certificates parsed;
  for (size_t i = 0; i < data.size(); ++i) {
    if (auto certificate = NKCertificate::createWithData(data[i])) {
      parsed.push_back(std::move(certificate));
    } else {
      platform::Log::writef("NKServerTrust: %s certificate %zu (%zu bytes) does not parse; left out", role, i,
                            data[i].size());
    }
  }
  return parsed;
}

void NKServerTrust::setAnchorCertificates(const std::vector<Bytes>& anchors) { anchors_ = parse(anchors, "anchor"); }

NKTrustResultType NKServerTrust::evaluate() {
  chain_ = certificates_;
  if (certificates_.empty()) return NKTrustResultInvalid;

  std::unique_ptr<X509_STORE, StoreFree> anchorStore;
  X509_STORE* store = systemStore();
  if (anchors_) {
    anchorStore.reset(X509_STORE_new());
    if (!anchorStore) return NKTrustResultOtherError;
    for (const auto& anchor : *anchors_) X509_STORE_add_cert(anchorStore.get(), anchor->x509());
    store = anchorStore.get();
  }
  if (!store) return NKTrustResultOtherError;

  std::unique_ptr<STACK_OF(X509), StackFree> untrusted(sk_X509_new_null());
  std::unique_ptr<X509_STORE_CTX, ContextFree> context(X509_STORE_CTX_new());
  if (!untrusted || !context) return NKTrustResultOtherError;
  for (size_t i = 1; i < certificates_.size(); ++i) sk_X509_push(untrusted.get(), certificates_[i]->x509());
  if (X509_STORE_CTX_init(context.get(), store, certificates_.front()->x509(), untrusted.get()) != 1) {
    return NKTrustResultOtherError;
  }
  X509_VERIFY_PARAM* param = X509_STORE_CTX_get0_param(context.get());
  X509_VERIFY_PARAM_set_time(param, static_cast<time_t>(clock_->wallWholeSeconds()));
  // A pinned anchor need not be a root: trusting it ends the chain there.
  if (anchors_) X509_VERIFY_PARAM_set_flags(param, X509_V_FLAG_PARTIAL_CHAIN);
  if (policy_.kind == NKTrustPolicy::kSSL) applySSLPolicy(context.get(), policy_.host);

  const bool verified = X509_verify_cert(context.get()) == 1;
  if (STACK_OF(X509)* built = X509_STORE_CTX_get0_chain(context.get()); built && sk_X509_num(built) > 0) {
    Certificates chain;
    for (int i = 0; i < sk_X509_num(built); ++i) {
      if (auto certificate = NKCertificate::createWithX509(sk_X509_value(built, i))) chain.push_back(certificate);
    }
    chain_ = std::move(chain);
  }
  return verified ? NKTrustResultUnspecified : NKTrustResultRecoverableTrustFailure;
}

std::optional<NKServerTrust::Bytes> NKServerTrust::copyPublicKey() const {
  if (chain_.empty()) return std::nullopt;
  return chain_.front()->publicKeyData();
}

}  // namespace quillet::http
