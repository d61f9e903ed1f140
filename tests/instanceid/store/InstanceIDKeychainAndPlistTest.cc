#include <gtest/gtest.h>
#include <sys/stat.h>

#include "instanceid/store/InstanceIDAuthKeychain.h"
#include "instanceid/store/InstanceIDBackupExcludedPlist.h"
#include "instanceid/store/InstanceIDCheckinPreferences.h"
#include "instanceid/store/InstanceIDStore.h"
#include "instanceid/store/InstanceIDTestEnvironment.h"
#include "platform/files/AtomicFile.h"

namespace quillet::instanceid {
namespace {

using platform::Value;

TEST(InstanceIDAuthKeychainTest, WildcardMatchesOnlyItsOwnGeneric) {
  testing::TestInstall install;
  InstanceIDAuthKeychain tokens("com.stikri.iid-tokens", install.env);
  InstanceIDAuthKeychain checkin("com.stikri.iid", install.env);
  ASSERT_TRUE(tokens.setPassword("1|Token|a", "MSG", std::nullopt, "e1", nullptr));
  ASSERT_TRUE(tokens.setPassword("1|Token|b", "other", std::nullopt, "e2", nullptr));
  ASSERT_TRUE(checkin.setPassword("11|22", "svc", std::nullopt, "acct", nullptr));
  // A second write replaces the item instead of adding one.
  ASSERT_TRUE(checkin.setPassword("33|44", "svc", std::nullopt, "acct", nullptr));
  EXPECT_EQ(install.keychainCount(), 3u);

  EXPECT_EQ(tokens.passwordForService("*", "e2", nullptr), "1|Token|b");
  EXPECT_TRUE(tokens.removeAllItemsWithError(nullptr));
  EXPECT_EQ(install.keychainCount(), 1u);
  EXPECT_EQ(checkin.passwordForService("svc", "acct", nullptr), "33|44");

  std::vector<platform::KeychainItem> items;
  install.keychain->copyMatching({}, platform::Keychain::MatchLimit::All, &items);
  EXPECT_EQ(items[0].attributes.at("accessible"), Value("kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly"));
}

TEST(InstanceIDAuthKeychainTest, MissingItemsAndEmptyAddresses) {
  testing::TestInstall install;
  InstanceIDAuthKeychain keychain("g", install.env);
  platform::Error error;
  EXPECT_TRUE(keychain.removePasswordForService("s", "a", &error));
  EXPECT_EQ(error.domain, "com.stikri.iid");
  EXPECT_EQ(error.code, -25300);

  error = {};
  EXPECT_FALSE(keychain.passwordForService("s", "a", &error));
  EXPECT_EQ(error.code, -25300);

  error = {};
  EXPECT_FALSE(keychain.setPassword("x", "", std::nullopt, "a", &error));
  EXPECT_EQ(error.code, -1301);
  EXPECT_FALSE(keychain.removePasswordForService("s", "", nullptr));
  EXPECT_EQ(install.keychainCount(), 0u);
}

TEST(InstanceIDBackupExcludedPlistTest, WriteMarksNoBackupAndCaches) {
  testing::TestInstall install;
  InstanceIDBackupExcludedPlist plist("com.stikri.iid-tokens", install.env);
  EXPECT_EQ(plist.plistPath(), install.fileSystem->documentsDirectory() / "com.stikri.iid-tokens.plist");
  EXPECT_FALSE(plist.contentAsDictionary());
  ASSERT_TRUE(plist.writeDictionary({{"k", Value("v")}}, nullptr));
  EXPECT_TRUE(install.fileSystem->isExcludedFromBackup(plist.plistPath()));
  ASSERT_TRUE(plist.writeDictionary({{"k", Value("w")}}, nullptr));
  EXPECT_TRUE(install.fileSystem->isExcludedFromBackup(plist.plistPath()));

  InstanceIDBackupExcludedPlist reader("com.stikri.iid-tokens", install.env);
  EXPECT_EQ(reader.contentAsDictionary()->at("k"), Value("w"));
  EXPECT_TRUE(plist.deleteFile(nullptr));
  EXPECT_FALSE(plist.cachedPlistContents());
  EXPECT_FALSE(plist.doesFileExist());
  EXPECT_EQ(reader.contentAsDictionary()->at("k"), Value("w"));  // its own cache
  EXPECT_TRUE(plist.deleteFile(nullptr));
}

TEST(InstanceIDBackupExcludedPlistTest, TheFileIsTheOwnersAloneWhateverTheUmask) {
  testing::TestInstall install;
  InstanceIDBackupExcludedPlist plist("g-checkin", install.env);
  const mode_t previous = ::umask(0);
  const bool written = plist.writeDictionary({{"secret", Value("s")}}, nullptr);
  ::umask(previous);
  ASSERT_TRUE(written);
  struct stat info {};
  ASSERT_EQ(::stat(plist.plistPath().c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0600u);
}

TEST(InstanceIDBackupExcludedPlistTest, DamagedFileAndFailedWrite) {
  testing::TestInstall install;
  InstanceIDBackupExcludedPlist plist("p", install.env);
  ASSERT_TRUE(platform::AtomicFile::write(plist.plistPath(), "not a plist"));
  EXPECT_FALSE(plist.contentAsDictionary());

  auto lines = testing::IIDLogLines::install();
  std::filesystem::remove(plist.plistPath());
  std::filesystem::create_directories(plist.plistPath() / "x");  // a directory stands in the way
  platform::Error error;
  EXPECT_FALSE(plist.writeDictionary({{"k", Value(1)}}, &error));
  EXPECT_TRUE(lines->contains("Failed to write to p.plist"));
  EXPECT_EQ(error.code, 0);
  EXPECT_FALSE(plist.cachedPlistContents());
}

TEST(InstanceIDCheckinPreferencesTest, ValidityBoundaryAndKeychainText) {
  InstanceIDCheckinPreferences preferences("123", "456");
  preferences.setLastCheckinTimestampMillis(1000);
  EXPECT_TRUE(preferences.hasValidCheckinInfo(1000 + 86399999));
  EXPECT_FALSE(preferences.hasValidCheckinInfo(1000 + 86400000));
  EXPECT_FALSE(InstanceIDCheckinPreferences("", "456").hasValidCheckinInfo(1000));
  preferences.setLastCheckinTimestampMillis(INT64_MIN);
  EXPECT_FALSE(preferences.hasValidCheckinInfo(1000));
  preferences.setLastCheckinTimestampMillis(1000);
  EXPECT_EQ(preferences.checkinKeychainContent(), "123|456");

  EXPECT_TRUE(InstanceIDCheckinPreferences::preferencesFromKeychainContents("1|2"));
  EXPECT_FALSE(InstanceIDCheckinPreferences::preferencesFromKeychainContents("1|2|3"));
  EXPECT_FALSE(InstanceIDCheckinPreferences::preferencesFromKeychainContents("1|"));
  EXPECT_FALSE(InstanceIDCheckinPreferences::preferencesFromKeychainContents("12"));

  preferences.updateWithCheckinPlistContents({{"IIDDigestKey", Value("d")},
                                              {"Unknown", Value(1)},
                                              {"IIDServicesData", Value(Value::Dictionary{{"a", Value(1)}})}});
  const auto contents = preferences.checkinPlistContents();
  EXPECT_EQ(contents.size(), 5u);
  EXPECT_EQ(contents.at("IIDDigestKey"), Value("d"));
  EXPECT_EQ(contents.at("IIDVersionInfo"), Value(""));
  EXPECT_EQ(contents.at("IIDLastCheckinTimestampKey"), Value(1000));
  preferences.reset();
  EXPECT_FALSE(preferences.checkinKeychainContent());
  EXPECT_EQ(preferences.lastCheckinTimestampMillis(), 0);
}

TEST(InstanceIDStoreKeysTest, CacheKeysAndRecords) {
  EXPECT_EQ(InstanceIDStore::cacheKeyForAuthorizedEntity("e", "s"), "|T|e|s");
  EXPECT_EQ(InstanceIDStore::authorizedEntityInTokenCacheKey("|T|e|s"), "e");
  EXPECT_EQ(InstanceIDStore::scopeInTokenCacheKey("|T|e|s"), "s");
  EXPECT_FALSE(InstanceIDStore::scopeInTokenCacheKey("|T|e|s|x"));
  EXPECT_EQ(InstanceIDStore::apnsTokenCacheKeyForServerType(false), "|O|IIDApnsTokenKey|prod");
  EXPECT_EQ(InstanceIDStore::apnsTokenCacheKeyForServerType(true), "|O|IIDApnsTokenKey|sandbox");
  EXPECT_EQ(InstanceIDStore::appVersionKey(), "com.stikri.iid-app_version");

  EXPECT_EQ(InstanceIDTokenStore::cacheValueForToken("tok", 1700000000), "1700000000|Token|tok");
  EXPECT_EQ(InstanceIDTokenStore::actualTokenFromCachedToken("5|Token|a|Token|b"), "a|Token|b");
  EXPECT_FALSE(InstanceIDTokenStore::actualTokenFromCachedToken("5|Token|"));
  EXPECT_EQ(InstanceIDTokenStore::cacheTimeForCachedToken("5|Token|a"), 5);
  EXPECT_EQ(InstanceIDTokenStore::cacheTimeForCachedToken("|Token|a"), 0);
}

}  // namespace
}  // namespace quillet::instanceid
