#include <gtest/gtest.h>

#include <fstream>

#include "TestChains.h"
#include "http/operations/NKHTTPRequestOperationManager.h"
#include "platform/net/LocalServer.h"
#include "platform/runloop/RunLoop.h"
#include "support/TempDir.h"

namespace quillet::http {
namespace {

using Operation = std::shared_ptr<NKHTTPRequestOperation>;

// A GET through the request manager against a loopback TLS server whose
// chain (leaf, intermediate) leads to a root the system does not know.
TEST(NKSecurityPolicyConnectionTest, RefusalCancelsTheRequest) {
  const TestChains& certs = TestChains::shared();
  testing::TempDir dir;
  std::ofstream(dir.path() / "chain.pem") << certs.leafChainPem;
  std::ofstream(dir.path() / "key.pem") << certs.leafKeyPem;
  platform::LocalServer server((dir.path() / "chain.pem").string(), (dir.path() / "key.pem").string());
  server.server().set_keep_alive_max_count(1);
  server.server().Get("/ok", [](const httplib::Request&, httplib::Response& response) {
    response.set_content("{\"status\":1}", "application/json");
  });
  server.start();
  auto loop = std::make_shared<platform::RunLoop>(std::make_shared<platform::ManualClock>());
  platform::RunLoop::setMain(loop);

  // The reply's status, or the error code when the request failed.
  auto get = [&](std::shared_ptr<NKSecurityPolicy> policy) {
    auto manager = NKHTTPRequestOperationManager::manager();
    manager->securityPolicy = std::move(policy);
    std::optional<int64_t> outcome;
    manager->GET(
        server.url("/ok", "https"), platform::Value(),
        [&](const Operation&, const platform::Value& reply) { outcome = reply["status"].integerValue(); },
        [&](const Operation&, const platform::Error& error) { outcome = error.code; });
    EXPECT_TRUE(loop->runUntil([&] { return outcome.has_value(); }, 10));
    return outcome.value_or(0);
  };
  auto pinned = [](std::vector<TestChains::Bytes> pins) {
    auto policy = NKSecurityPolicy::defaultPolicy();
    policy->SSLPinningMode = NKSSLPinningModeCertificate;
    policy->validatesCertificateChain = false;
    policy->allowInvalidCertificates = true;
    policy->setPinnedCertificates(std::move(pins));
    return policy;
  };

  EXPECT_EQ(get(pinned({certs.root})), 1);
  EXPECT_EQ(get(pinned({certs.otherRoot})), -999);
  auto chainOnly = NKSecurityPolicy::defaultPolicy();
  chainOnly->validatesDomainName = false;  // judged by the policy, against the system's store
  EXPECT_EQ(get(chainOnly), -999);
  server.stop();
}

}  // namespace
}  // namespace quillet::http
