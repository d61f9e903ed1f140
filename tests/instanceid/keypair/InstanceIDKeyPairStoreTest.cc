// The key pair store: first load, reload by a new store, reinstall, and
// keeping the creation time plist and the keychain in step.
#include <gtest/gtest.h>

#include <thread>

#include "KeyPairTestEnvironment.h"
#include "instanceid/keypair/InstanceIDKeyPairStore.h"
#include "instanceid/store/InstanceIDBackupExcludedPlist.h"
#include "instanceid/support/InstanceIDError.h"
#include "support/LogCapture.h"

namespace quillet::instanceid {
namespace {

TEST(InstanceIDKeyPairStoreTest, NamesOfItemsAndFile) {
  EXPECT_EQ(InstanceIDKeyPairStore::publicTagWithSubtype(""), "com.stikri.iid-|P|");
  EXPECT_EQ(InstanceIDKeyPairStore::privateTagWithSubtype("x"), "com.stikri.iid-x|K|");
  EXPECT_EQ(InstanceIDKeyPairStore::creationTimeKeyWithSubtype(""), "|S|cre");
  EXPECT_EQ(InstanceIDKeyPairStore::keyStoreFileName(), "com.stikri.iid-keypair");
}

TEST(InstanceIDKeyPairStoreTest, ConcurrentFirstLoadsMakeOnePairThatANewStoreFindsAgain) {
  testing::KeyPairTestEnvironment install;
  InstanceIDKeyPairStore store(install.env);
  EXPECT_FALSE(store.hasCachedKeyPairs());

  std::shared_ptr<InstanceIDKeyPair> first, second;
  std::thread a([&] { first = store.loadKeyPairWithError(nullptr); });
  std::thread b([&] { second = store.loadKeyPairWithError(nullptr); });
  a.join();
  b.join();
  ASSERT_TRUE(first);
  EXPECT_EQ(first, second);
  EXPECT_EQ(install.keyItemCount(), 2u);

  InstanceIDBackupExcludedPlist plist(InstanceIDKeyPairStore::keyStoreFileName(), install.env);
  EXPECT_EQ(plist.contentAsDictionary()->at("|S|cre"), platform::Value(install.env->nowSeconds()));

  platform::Error error(kInstanceIDErrorDomain, 99);
  const std::optional<std::string> identity = store.appIdentityWithError(&error);
  ASSERT_TRUE(identity);
  EXPECT_EQ(error.code, 0);

  InstanceIDKeyPairStore again(install.env);
  EXPECT_TRUE(again.hasCachedKeyPairs());
  EXPECT_EQ(again.appIdentityWithError(nullptr), identity);
  EXPECT_EQ(again.loadKeyPairWithError(nullptr)->publicKeyData(), first->publicKeyData());
}

TEST(InstanceIDKeyPairStoreTest, ReinstallReplacesTheKeysLeftInTheKeychain) {
  testing::KeyPairTestEnvironment install;
  const platform::RsaKeyPair& old = testing::sharedTestKey();
  install.addKeyItems(old, "com.stikri.iid-|K|", "com.stikri.iid-|P|");
  InstanceIDBackupExcludedPlist plist(InstanceIDKeyPairStore::keyStoreFileName(), install.env);
  ASSERT_TRUE(plist.writeDictionary({{"|S|cre", platform::Value(1)}, {"other|S|cre", platform::Value(2)}}, nullptr));
  const std::optional<std::string> oldIdentity = InstanceIDKeyPairStore(install.env).appIdentityWithError(nullptr);
  ASSERT_TRUE(oldIdentity);

  ASSERT_TRUE(install.fileSystem->removeInstallData());
  InstanceIDKeyPairStore store(install.env);
  platform::Error stale;
  EXPECT_FALSE(store.validCachedKeyPairWithSubtype("", &stale));
  EXPECT_EQ(stale.code, 2005);
  platform::Error error;
  const auto pair = store.loadKeyPairWithError(&error);
  ASSERT_TRUE(pair);
  EXPECT_EQ(error.code, 0);  // a new pair stands: the erased one is no failure
  EXPECT_NE(pair->publicKeyData(), old.publicKeyDer());
  EXPECT_NE(InstanceIDKeyPair::appIdentityWithKeyPair(*pair), oldIdentity);
  EXPECT_EQ(install.keyItemCount(), 2u);
  EXPECT_EQ(InstanceIDKeyPairStore(install.env).loadKeyPairWithError(nullptr)->privateKeyData(),
            pair->privateKeyData());
}

TEST(InstanceIDKeyPairStoreTest, PlistAndKeychainAreKeptInStep) {
  testing::KeyPairTestEnvironment install;
  InstanceIDBackupExcludedPlist plist(InstanceIDKeyPairStore::keyStoreFileName(), install.env);
  ASSERT_TRUE(plist.writeDictionary({{"|S|cre", platform::Value(1)}, {"other|S|cre", platform::Value(2)}}, nullptr));

  // A creation time without items: a load fails with 2001, hasCachedKeyPairs drops the plist.
  InstanceIDKeyPairStore store(install.env);
  platform::Error error;
  EXPECT_FALSE(store.validCachedKeyPairWithSubtype("", &error));
  EXPECT_EQ(error.code, 2001);
  EXPECT_FALSE(store.hasCachedKeyPairs());
  EXPECT_FALSE(plist.doesFileExist());

  // Deleting a pair removes its own creation time only.
  install.addKeyItems(testing::sharedTestKey(), "com.stikri.iid-|K|", "com.stikri.iid-|P|");
  ASSERT_TRUE(plist.writeDictionary({{"|S|cre", platform::Value(1)}, {"other|S|cre", platform::Value(2)}}, nullptr));
  InstanceIDKeyPairStore loaded(install.env);
  ASSERT_TRUE(loaded.loadKeyPairWithError(nullptr));
  EXPECT_TRUE(loaded.deleteSavedKeyPairWithSubtype("", nullptr));
  EXPECT_EQ(install.keyItemCount(), 0u);
  InstanceIDBackupExcludedPlist reread(InstanceIDKeyPairStore::keyStoreFileName(), install.env);
  EXPECT_EQ(reread.contentAsDictionary(), (platform::Value::Dictionary{{"other|S|cre", platform::Value(2)}}));
  EXPECT_TRUE(loaded.removeKeyPairCreationTimePlistWithError(nullptr));
  EXPECT_FALSE(reread.doesFileExist());
}

}  // namespace
}  // namespace quillet::instanceid
