#include <gtest/gtest.h>

#include "instanceid/store/InstanceIDStore.h"
#include "instanceid/store/InstanceIDTestEnvironment.h"

namespace quillet::instanceid {
namespace {

using platform::Value;

struct StoreFixture : ::testing::Test {
  testing::TestInstall install;
  std::vector<std::pair<std::string, std::string>> deletions;

  std::shared_ptr<InstanceIDStore> start() {
    return InstanceIDStore::defaultStore(install.env, [this](const std::string& deviceID, const std::string& secret) {
      deletions.emplace_back(deviceID, secret);
    });
  }

  static bool saveCredential(InstanceIDStore& store) {
    InstanceIDCheckinPreferences preferences("4000000000000000001", "77");
    preferences.setLastCheckinTimestampMillis(5);
    return store.saveCheckinPreferences(preferences, nullptr);
  }
};

TEST_F(StoreFixture, SecondStartKeepsEverything) {
  {
    auto store = start();
    ASSERT_TRUE(saveCredential(*store));
    ASSERT_TRUE(store->saveToken("tok", "entity", "MSG"));
    EXPECT_EQ(install.defaults->stringForKey("IID-version"), "1.1.7");
  }
  auto store = start();
  EXPECT_TRUE(deletions.empty());
  EXPECT_EQ(store->tokenWithAuthorizedEntity("entity", "MSG"), "tok");
  EXPECT_EQ(store->cacheTimeForTokenWithAuthorizedEntity("entity", "MSG"), 1800000000);
  ASSERT_TRUE(store->cachedCheckinPreferences());
  EXPECT_EQ(store->cachedCheckinPreferences()->deviceID(), "4000000000000000001");
  EXPECT_EQ(store->cachedCheckinPreferences()->lastCheckinTimestampMillis(), 5);
  EXPECT_FALSE(store->tokenWithAuthorizedEntity("", "MSG"));
  EXPECT_EQ(store->cacheTimeForTokenWithAuthorizedEntity("entity", ""), 0);
}

TEST_F(StoreFixture, ReinstallDeletesCredentialAndTokensAndAsksServerOnce) {
  {
    auto store = start();
    ASSERT_TRUE(saveCredential(*store));
    ASSERT_TRUE(store->saveToken("tok", "entity", "MSG"));
    ASSERT_TRUE(store->saveToken("auth", "entity", "iid-all"));
  }
  install.reinstall();
  EXPECT_EQ(install.keychainCount(), 3u);
  auto store = start();
  ASSERT_EQ(deletions.size(), 1u);
  EXPECT_EQ(deletions[0], std::make_pair(std::string("4000000000000000001"), std::string("77")));
  EXPECT_EQ(install.keychainCount(), 0u);
  EXPECT_FALSE(store->cachedCheckinPreferences());
  EXPECT_TRUE(store->hasSavedLibraryVersion());
}

TEST_F(StoreFixture, UpgradeKeepsCredentialAndMovesSecretsIntoKeychain) {
  InstanceIDBackupExcludedPlist old("g-checkin", install.env);
  ASSERT_TRUE(old.writeDictionary({{"IIDDeviceAuthIdKey", Value("123")},
                                   {"IIDSecretTokenKey", Value("456")},
                                   {"IIDDigestKey", Value("dg")},
                                   {"IIDLastCheckinTimestampKey", Value(9)}},
                                  nullptr));
  auto store = start();
  EXPECT_TRUE(deletions.empty());
  auto preferences = store->cachedCheckinPreferences();
  ASSERT_TRUE(preferences);
  EXPECT_EQ(preferences->deviceID(), "123");
  EXPECT_EQ(preferences->secretToken(), "456");
  EXPECT_EQ(preferences->digest(), "dg");
  EXPECT_EQ(preferences->lastCheckinTimestampMillis(), 9);

  InstanceIDBackupExcludedPlist reread("g-checkin", install.env);
  const auto contents = reread.contentAsDictionary();
  ASSERT_TRUE(contents);
  EXPECT_EQ(contents->count("IIDDeviceAuthIdKey") + contents->count("IIDSecretTokenKey"), 0u);
  EXPECT_EQ(store->checkinStore().keychain().passwordForService("com.stikri.iid.checkin-service",
                                                                "com.stikri.iid.checkin-account", nullptr),
            "123|456");
}

TEST_F(StoreFixture, OldPlistTokensMoveAndOnlyApnsEntriesStay) {
  InstanceIDBackupExcludedPlist tokens("com.stikri.iid-tokens", install.env);
  ASSERT_TRUE(tokens.writeDictionary({{"|T|sender|MSG", Value("moved")},
                                      {"|T|sender|MSG-time", Value("123")},
                                      {"|T|malformed", Value("lost")},
                                      {"stray", Value("x")},
                                      {"|O|IIDApnsTokenKey|prod", Value("p_1")},
                                      {"|O|IIDApnsTokenKey|sandbox", Value("s_1")}},
                                     nullptr));
  auto lines = testing::IIDLogLines::install();
  auto store = start();
  EXPECT_TRUE(lines->contains("Failed to move some tokens to Keychain."));
  EXPECT_EQ(store->tokenWithAuthorizedEntity("sender", "MSG"), "moved");
  EXPECT_EQ(install.keychainCount(), 1u);

  InstanceIDBackupExcludedPlist reread("com.stikri.iid-tokens", install.env);
  const platform::Value::Dictionary expected = {{"|O|IIDApnsTokenKey|prod", Value("p_1")},
                                                {"|O|IIDApnsTokenKey|sandbox", Value("s_1")}};
  EXPECT_EQ(reread.contentAsDictionary(), expected);
  EXPECT_EQ(store->cachedAPNSTokenForServerType(true), "s_1");
}

TEST_F(StoreFixture, ApnsTokensAppVersionAndTokenRemoval) {
  auto store = start();
  EXPECT_FALSE(store->cachedAPNSTokenForServerType(false));
  store->saveAPNSToken("", false);
  EXPECT_FALSE(store->tokenPlist().doesFileExist());
  store->saveAPNSToken("p_abc", false);
  EXPECT_EQ(store->cachedAPNSTokenForServerType(false), "p_abc");
  EXPECT_FALSE(store->cachedAPNSTokenForServerType(true));
  store->removeCachedAPNSTokenForServeryType(false);
  EXPECT_FALSE(store->cachedAPNSTokenForServerType(false));

  EXPECT_FALSE(store->hasSavedAppVersion());
  store->saveAppVersion();
  EXPECT_EQ(store->currentSavedAppVersion(), "2.0");

  ASSERT_TRUE(store->saveToken("a", "e1", "MSG"));
  ASSERT_TRUE(store->saveToken("b", "e2", "MSG"));
  ASSERT_TRUE(store->saveToken("c", "e1", "msg"));
  ASSERT_TRUE(saveCredential(*store));
  EXPECT_TRUE(store->removeAllMSGTokensWithError(nullptr));
  EXPECT_FALSE(store->tokenWithAuthorizedEntity("e2", "MSG"));
  EXPECT_EQ(store->tokenWithAuthorizedEntity("e1", "msg"), "c");
  store->removeCachedTokenWithAuthorizedEntity("e1", "msg");
  EXPECT_FALSE(store->tokenWithAuthorizedEntity("e1", "msg"));

  platform::Error error;
  EXPECT_TRUE(store->removeAllCachedTokensWithError(&error));
  EXPECT_EQ(error.code, -25300);  // nothing left to delete
  EXPECT_TRUE(store->cachedCheckinPreferences());
  EXPECT_FALSE(store->saveToken("", "e", "MSG"));
}

}  // namespace
}  // namespace quillet::instanceid
