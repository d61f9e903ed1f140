#include <gtest/gtest.h>

#include "messaging/checkin/MSGRegistrar.h"
#include "platform/clock/Clock.h"
#include "platform/plist/PropertyListFile.h"
#include "support/TempDir.h"

namespace quillet::messaging {
namespace {

using platform::Value;

// The records device check-in leaves behind, written directly.
struct MSGCheckinFixture : ::testing::Test {
  quillet::testing::TempDir dir;
  std::shared_ptr<platform::FileSystem> fileSystem = std::make_shared<platform::FileSystem>(dir.path());
  platform::Keychain keychain{*fileSystem};
  std::shared_ptr<platform::ManualClock> clock = std::make_shared<platform::ManualClock>();
  std::shared_ptr<MSGCheckinStore> store = std::make_shared<MSGCheckinStore>(fileSystem, keychain);
  MSGAuthKeychain itemKeychain{"com.stikri.iid", keychain};

  int64_t now() const { return static_cast<int64_t>(clock->wallSeconds() * 1000.0); }

  void writeCredential(const std::string& text) {
    ASSERT_TRUE(itemKeychain.setPassword(text, "com.stikri.iid.checkin-service", std::nullopt,
                                         "com.stikri.iid.checkin-account", nullptr));
  }
  void writePlist(Value::Dictionary contents) {
    ASSERT_TRUE(platform::PropertyListFile::save(store->pathForCheckinPlist(), Value(std::move(contents)), "test"));
  }
};

TEST_F(MSGCheckinFixture, CredentialsCountOnlyBesideAPlist) {
  writeCredential("123|456");
  EXPECT_FALSE(store->cachedCheckinPreferences());

  writePlist({{"IIDDigestKey", Value("d")},
              {"IIDVersionInfo", Value("v")},
              {"IIDLastCheckinTimestampKey", Value(static_cast<long long>(now()))}});
  auto preferences = store->cachedCheckinPreferences();
  ASSERT_TRUE(preferences);
  EXPECT_EQ(preferences->deviceID(), "123");
  EXPECT_EQ(preferences->versionInfo(), "v");

  MSGRegistrar registrar(store, clock);
  EXPECT_FALSE(registrar.hasValidCheckinInfo());
  EXPECT_TRUE(registrar.tryToLoadValidCheckinInfo());
  EXPECT_EQ(registrar.deviceAuthID(), "123");
  EXPECT_EQ(registrar.secretToken(), "456");
  clock->advance(86399.0);
  EXPECT_TRUE(registrar.hasValidCheckinInfo());
  clock->advance(1.0);  // exactly one day: no longer valid
  EXPECT_FALSE(registrar.hasValidCheckinInfo());
  EXPECT_FALSE(registrar.tryToLoadValidCheckinInfo());
}

TEST_F(MSGCheckinFixture, BadPasswordsAndMissingTimestamp) {
  writePlist({{"IIDDigestKey", Value("d")}});
  writeCredential("123456");
  EXPECT_FALSE(store->cachedCheckinPreferences());
  writeCredential("1|2|3");
  EXPECT_FALSE(store->cachedCheckinPreferences());

  writeCredential("123|456");
  auto preferences = store->cachedCheckinPreferences();
  ASSERT_TRUE(preferences);
  EXPECT_EQ(preferences->lastCheckinTimestampMillis(), 0);
  EXPECT_FALSE(preferences->hasValidCheckinInfo(now()));
  MSGRegistrar registrar(store, clock);
  EXPECT_FALSE(registrar.tryToLoadValidCheckinInfo());
}

TEST_F(MSGCheckinFixture, OldPlistPairStandsInForAMissingKeychainItem) {
  writePlist({{"IIDDeviceAuthIdKey", Value("7")},
              {"IIDSecretTokenKey", Value("8")},
              {"IIDLastCheckinTimestampKey", Value(static_cast<long long>(now()))}});
  auto preferences = store->cachedCheckinPreferences();
  ASSERT_TRUE(preferences);
  EXPECT_EQ(preferences->checkinKeychainContent(), "7|8");
  EXPECT_TRUE(preferences->hasValidCheckinInfo(now()));
}

TEST_F(MSGCheckinFixture, RemovalAndNoWildcards) {
  writeCredential("123|456");
  writePlist({{"IIDDigestKey", Value("d")}});
  EXPECT_FALSE(itemKeychain.passwordForService("*", "com.stikri.iid.checkin-account", nullptr));
  platform::Error error;
  EXPECT_FALSE(itemKeychain.setPassword("", "s", std::nullopt, "a", &error));
  EXPECT_EQ(error.code, -1301);
  EXPECT_EQ(error.domain, "com.stikri.msg");

  EXPECT_TRUE(store->removeCheckinPreferences(nullptr));
  EXPECT_FALSE(store->hasCheckinPlist());
  EXPECT_FALSE(
      itemKeychain.passwordForService("com.stikri.iid.checkin-service", "com.stikri.iid.checkin-account", nullptr));
  EXPECT_TRUE(store->removeCheckinPreferences(nullptr));  // nothing left is no failure
}

}  // namespace
}  // namespace quillet::messaging
