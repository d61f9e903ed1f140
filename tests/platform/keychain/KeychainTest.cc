#include "platform/keychain/Keychain.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/files/AtomicFile.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::platform {
namespace {

using quillet::testing::LogCapture;
using quillet::testing::TempDir;

Value::Bytes bytes(std::string_view text) { return Value::Bytes(text.begin(), text.end()); }

KeychainItem password(std::string generic, std::string service, std::string account, std::string secret) {
  KeychainItem item;
  item.generic = bytes(generic);
  item.service = std::move(service);
  item.account = std::move(account);
  item.data = bytes(secret);
  return item;
}

KeychainQuery byGeneric(std::string generic) {
  KeychainQuery query;
  query.itemClass = KeychainItemClass::GenericPassword;
  query.generic = bytes(generic);
  return query;
}

TEST(KeychainTest, AddFindDuplicateAndAnyDelete) {
  TempDir dir;
  Keychain keychain{FileSystem(dir.path())};
  auto checkin = password("iid", "checkin-service", "checkin-account", "123|secret");
  ASSERT_EQ(keychain.add(checkin), Keychain::statusSuccess);
  ASSERT_EQ(keychain.add(password("tokens", "scope1", "entity", "t1")), Keychain::statusSuccess);
  ASSERT_EQ(keychain.add(password("tokens", "scope2", "entity", "t2")), Keychain::statusSuccess);
  EXPECT_EQ(keychain.add(password("other", "scope1", "entity", "x")), Keychain::statusDuplicateItem);

  std::vector<KeychainItem> found;
  KeychainQuery exact = byGeneric("iid");
  exact.service = "checkin-service";
  exact.account = "checkin-account";
  ASSERT_EQ(keychain.copyMatching(exact, Keychain::MatchLimit::One, &found), Keychain::statusSuccess);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0], checkin);
  ASSERT_EQ(keychain.copyMatching(byGeneric("tokens"), Keychain::MatchLimit::All, &found), Keychain::statusSuccess);
  EXPECT_EQ(found.size(), 2u);
  EXPECT_EQ(keychain.copyMatching(byGeneric("tokens"), Keychain::MatchLimit::One, &found), Keychain::statusSuccess);
  EXPECT_EQ(found.size(), 1u);
  exact.account = "";
  EXPECT_EQ(keychain.copyMatching(exact, Keychain::MatchLimit::One, &found), Keychain::statusItemNotFound);
  EXPECT_TRUE(found.empty());

  // Service and account left unset match any: every token goes, the credential stays.
  EXPECT_EQ(keychain.deleteMatching(byGeneric("tokens")), Keychain::statusSuccess);
  EXPECT_EQ(keychain.deleteMatching(byGeneric("tokens")), Keychain::statusItemNotFound);
  EXPECT_EQ(keychain.copyMatching(KeychainQuery{}, Keychain::MatchLimit::All, &found), Keychain::statusSuccess);
  EXPECT_EQ(found, std::vector<KeychainItem>{checkin});
}

TEST(KeychainTest, KeyItemsMatchByTagAndAttributes) {
  TempDir dir;
  Keychain keychain{FileSystem(dir.path())};
  KeychainItem privateKey;
  privateKey.itemClass = KeychainItemClass::Key;
  privateKey.applicationTag = bytes("com.iid.private");
  privateKey.attributes = {{"keyType", Value("rsa")}, {"keyClass", Value("private")}};
  privateKey.data = bytes("\x30\x82");
  KeychainItem publicKey = privateKey;
  publicKey.attributes["keyClass"] = "public";
  ASSERT_EQ(keychain.add(privateKey), Keychain::statusSuccess);
  ASSERT_EQ(keychain.add(publicKey), Keychain::statusSuccess);
  EXPECT_EQ(keychain.add(publicKey), Keychain::statusDuplicateItem);

  KeychainQuery query;
  query.itemClass = KeychainItemClass::Key;
  query.applicationTag = bytes("com.iid.private");
  query.attributes = {{"keyClass", Value("public")}};
  std::vector<KeychainItem> found;
  ASSERT_EQ(keychain.copyMatching(query, Keychain::MatchLimit::All, &found), Keychain::statusSuccess);
  EXPECT_EQ(found, std::vector<KeychainItem>{publicKey});
  query.attributes = {{"label", Value("none")}};
  EXPECT_EQ(keychain.copyMatching(query, Keychain::MatchLimit::One, nullptr), Keychain::statusItemNotFound);

  KeychainItem bad = publicKey;
  bad.attributes = {{"x", Value::null()}};
  EXPECT_EQ(keychain.add(bad), Keychain::statusParam);
}

TEST(KeychainTest, PersistsPrivatelyAndSurvivesReinstall) {
  TempDir dir;
  FileSystem files(dir.path());
  auto item = password("iid", "s", "a", std::string("\0secret", 7));
  {
    Keychain keychain(files);
    ASSERT_EQ(keychain.add(item), Keychain::statusSuccess);
    struct stat info;
    ASSERT_EQ(::stat(keychain.path().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    EXPECT_EQ(keychain.path().parent_path(), dir.path() / "Keychain");
  }
  ASSERT_TRUE(files.removeInstallData());
  std::vector<KeychainItem> found;
  ASSERT_EQ(Keychain(files).copyMatching(byGeneric("iid"), Keychain::MatchLimit::One, &found), Keychain::statusSuccess);
  EXPECT_EQ(found, std::vector<KeychainItem>{item});
}

TEST(KeychainTest, DamagedFileStartsEmptyWithOneLogLine) {
  TempDir dir;
  FileSystem files(dir.path());
  auto path = files.keychainDirectory() / "keychain.plist";
  for (std::string damaged : {std::string("\x01\x02junk"), std::string("<plist><dict><key>items</key><array>"
                                                                       "<string>x</string></array></dict></plist>")}) {
    ASSERT_TRUE(AtomicFile::write(path, damaged));
    LogCapture log;
    Keychain keychain(files);
    EXPECT_EQ(keychain.copyMatching({}, Keychain::MatchLimit::One, nullptr), Keychain::statusItemNotFound);
    EXPECT_EQ(log.messages().size(), 1u);
    EXPECT_EQ(keychain.add(password("g", "s", "a", "d")), Keychain::statusSuccess);
    EXPECT_EQ(Keychain(files).copyMatching({}, Keychain::MatchLimit::One, nullptr), Keychain::statusSuccess);
  }
}

TEST(KeychainTest, FailedWriteIsUndone) {
  TempDir dir;
  FileSystem files(dir.path());
  Keychain keychain(files);
  ASSERT_EQ(keychain.add(password("g", "s", "a", "d")), Keychain::statusSuccess);
  // A non-empty directory in the file's place makes every write fail, even for root.
  std::filesystem::remove(keychain.path());
  std::filesystem::create_directories(keychain.path() / "blocker");
  LogCapture log;
  EXPECT_EQ(keychain.add(password("g", "s2", "a", "d")), Keychain::statusIO);
  EXPECT_EQ(keychain.deleteMatching({}), Keychain::statusIO);
  std::vector<KeychainItem> found;
  EXPECT_EQ(keychain.copyMatching({}, Keychain::MatchLimit::All, &found), Keychain::statusSuccess);
  EXPECT_EQ(found.size(), 1u);
  EXPECT_EQ(log.messages().size(), 2u);
}

}  // namespace
}  // namespace quillet::platform
