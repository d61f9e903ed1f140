// The token manager: when a cached token may be handed out, what a fetch
// keeps, and what an app update or an APNs change drops.
#include <gtest/gtest.h>

#include "instanceid/registration/RegistrationTestSupport.h"
#include "instanceid/tokens/InstanceIDTokenManager.h"

namespace quillet::instanceid {
namespace {

using platform::Value;
using testing::RegistrationInstall;
using testing::TokenResult;

const Value::Dictionary kProduction = {{"apns_token", Value("p_ab")}, {"apns_sandbox", Value(false)}};

class TokenManagerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    store = install.storeWithCheckin();
    manager = std::make_shared<InstanceIDTokenManager>(store, nullptr, install.env());
  }

  void fetch(const std::string& scope, const Value::Dictionary& options) {
    install.reply("token=|ID|1|PING|:tok-" + scope);
    TokenResult result;
    manager->fetchNewTokenWithAuthorizedEntity("ent", scope, RegistrationInstall::sharedKeyPair(), options,
                                               result.handler());
    ASSERT_TRUE(install.runUntil([&] { return result.callCount() > 0; }));
    ASSERT_EQ(result.token, "tok-" + scope);
  }

  RegistrationInstall install;
  std::shared_ptr<InstanceIDStore> store;
  std::shared_ptr<InstanceIDTokenManager> manager;
};

TEST_F(TokenManagerTest, FetchedTokenIsHandedOutWithoutRequestUntilTheAPNSTokenChanges) {
  // A clean install has no saved app version: stale, with nothing to lose.
  InstanceIDCachedToken first = manager->tokenWithAuthorizedEntity("ent", "MSG", kProduction);
  EXPECT_EQ(first.status, InstanceIDCachedToken::StatusStale);
  EXPECT_TRUE(first.shouldInvalidateAllTokens);

  fetch("MSG", kProduction);
  EXPECT_EQ(store->cachedAPNSTokenForServerType(false), "p_ab");
  install.clock()->setWallSeconds(install.clock()->wallSeconds() + 400 * 86400.0);
  InstanceIDCachedToken cached = manager->tokenWithAuthorizedEntity("ent", "MSG", kProduction);
  EXPECT_TRUE(cached.isValid());
  EXPECT_EQ(cached.token, "tok-MSG");
  EXPECT_EQ(install.requests().size(), 1u);

  // Another token, or the other server type, makes the cache stale; the
  // lower-case scope is a messaging scope too.
  Value::Dictionary changed = {{"apns_token", Value("p_cd")}, {"apns_sandbox", Value(false)}};
  EXPECT_EQ(manager->tokenWithAuthorizedEntity("ent", "MSG", changed).status, InstanceIDCachedToken::StatusStale);
  Value::Dictionary sandbox = {{"apns_token", Value("p_ab")}, {"apns_sandbox", Value(true)}};
  EXPECT_EQ(manager->tokenWithAuthorizedEntity("ent", "MSG", sandbox).status, InstanceIDCachedToken::StatusStale);
  store->saveToken("lower", "ent", "msg");
  EXPECT_EQ(manager->tokenWithAuthorizedEntity("ent", "msg", changed).status, InstanceIDCachedToken::StatusStale);
  EXPECT_EQ(manager->tokenWithAuthorizedEntity("ent", "other", changed).status, InstanceIDCachedToken::StatusNone);

  manager->setAllowMissingAPNSToken(true);
  EXPECT_TRUE(manager->tokenWithAuthorizedEntity("ent", "MSG", {}).isValid());

  // Invalidation for a changed APNs token drops the "MSG" tokens and the cached APNs token.
  manager->setAllowMissingAPNSToken(false);
  manager->invalidateCachedToken({}, "ent", "MSG", changed);
  EXPECT_FALSE(store->tokenWithAuthorizedEntity("ent", "MSG"));
  EXPECT_EQ(store->tokenWithAuthorizedEntity("ent", "msg"), "lower");
  EXPECT_FALSE(store->cachedAPNSTokenForServerType(false));
}

TEST_F(TokenManagerTest, AppUpdateDropsOnlyMessagingTokensButReportsEveryScopeStaleOnce) {
  fetch("MSG", kProduction);
  fetch("other", {});
  auto updated = std::make_shared<InstanceIDEnvironment>(*install.env());
  updated->appVersion = "2.1";
  auto updatedManager =
      std::make_shared<InstanceIDTokenManager>(InstanceIDStore::defaultStore(updated, nullptr), nullptr, updated);
  const InstanceIDCachedToken lookup = updatedManager->tokenWithAuthorizedEntity("ent", "other", {});
  EXPECT_EQ(lookup.status, InstanceIDCachedToken::StatusStale);
  updatedManager->invalidateCachedToken(lookup, "ent", "other", {});
  EXPECT_FALSE(store->tokenWithAuthorizedEntity("ent", "MSG"));
  EXPECT_EQ(store->tokenWithAuthorizedEntity("ent", "other"), "tok-other");
}

TEST_F(TokenManagerTest, DeletionsGoLocalFirstAndDeleteAllNeedsSomethingToDelete) {
  fetch("other", {});
  install.reply("nope");
  TokenResult one;
  manager->deleteTokenWithAuthorizedEntity("ent", "other", RegistrationInstall::sharedKeyPair(), one.deleteHandler());
  ASSERT_TRUE(install.runUntil([&] { return one.callCount() > 0; }));
  EXPECT_EQ(one.errorCode(), InstanceIDErrorCodeInvalidResponse);
  EXPECT_FALSE(store->tokenWithAuthorizedEntity("ent", "other"));

  // The keychain's "not found" counts as an error: 1007 and no request.
  const size_t sent = install.requests().size();
  TokenResult all;
  manager->deleteAllTokensWithKeyPair(RegistrationInstall::sharedKeyPair(), all.deleteHandler());
  EXPECT_EQ(all.errorCode(), InstanceIDErrorCodeDeleteTokensFailed);
  EXPECT_EQ(install.requests().size(), sent);

  fetch("MSG", kProduction);
  install.reply("deleted=*");
  TokenResult everything;
  manager->deleteAllTokensWithKeyPair(RegistrationInstall::sharedKeyPair(), everything.deleteHandler());
  ASSERT_TRUE(install.runUntil([&] { return everything.callCount() > 0; }));
  EXPECT_FALSE(everything.error);
  EXPECT_NE(RegistrationInstall::body(install.requests().back()).find("&X-scope=*&"), std::string::npos);
}

}  // namespace
}  // namespace quillet::instanceid
