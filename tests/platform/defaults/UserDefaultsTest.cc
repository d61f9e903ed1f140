#include "platform/defaults/UserDefaults.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <thread>
#include <vector>

#include "platform/files/AtomicFile.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::platform {
namespace {

using quillet::testing::LogCapture;
using quillet::testing::TempDir;

TEST(UserDefaultsTest, ValuesPersistAcrossInstances) {
  TempDir dir;
  FileSystem files(dir.path());
  {
    UserDefaults defaults(files, "app");
    EXPECT_TRUE(defaults.setInteger(3, "LaunchAmounts"));
    EXPECT_TRUE(defaults.setString("Night", "Mode"));
    EXPECT_TRUE(defaults.setObject(Value::array({"a", Value::bytes("b")}), "list"));
    EXPECT_TRUE(defaults.setBool(true, "launch"));
    EXPECT_TRUE(defaults.setObject(1, "gone"));
    EXPECT_TRUE(defaults.removeObjectForKey("gone"));
  }
  EXPECT_EQ(UserDefaults(files, "other").dictionaryRepresentation().size(), 0u);
  UserDefaults again(files, "app");
  EXPECT_EQ(again.path(), dir.path() / "Library/Preferences/app.plist");
  EXPECT_EQ(again.integerForKey("LaunchAmounts"), 3);
  EXPECT_EQ(again.stringForKey("Mode"), "Night");
  EXPECT_EQ(again.objectForKey("list"), Value::array({"a", Value::bytes("b")}));
  EXPECT_TRUE(again.boolForKey("launch"));
  EXPECT_TRUE(again.objectForKey("gone").isNil());
  EXPECT_EQ(again.dictionaryRepresentation().size(), 4u);

  again.reset();
  EXPECT_FALSE(files.fileExists(again.path()));
  EXPECT_EQ(UserDefaults(files, "app").integerForKey("LaunchAmounts"), 0);
}

TEST(UserDefaultsTest, TypedReadingsFollowThePhone) {
  TempDir dir;
  UserDefaults defaults(FileSystem(dir.path()), "app");
  defaults.setString("12", "text12");
  defaults.setString("YES", "yes");
  defaults.setString("true", "true");
  defaults.setString("no", "no");
  defaults.setInteger(2, "two");
  defaults.setDouble(2.5, "half");
  EXPECT_EQ(defaults.integerForKey("text12"), 12);
  EXPECT_TRUE(defaults.boolForKey("text12"));
  EXPECT_TRUE(defaults.boolForKey("yes"));
  EXPECT_TRUE(defaults.boolForKey("true"));
  EXPECT_FALSE(defaults.boolForKey("no"));
  EXPECT_TRUE(defaults.boolForKey("two"));
  EXPECT_EQ(defaults.stringForKey("two"), "2");
  EXPECT_DOUBLE_EQ(defaults.doubleForKey("half"), 2.5);
  EXPECT_EQ(defaults.integerForKey("half"), 2);
  EXPECT_EQ(defaults.integerForKey("missing"), 0);
  EXPECT_FALSE(defaults.boolForKey("missing"));
  EXPECT_FALSE(defaults.stringForKey("missing"));
  EXPECT_FALSE(defaults.dataForKey("text12"));
  EXPECT_FALSE(defaults.arrayForKey("text12"));
  EXPECT_FALSE(defaults.dictionaryForKey("two"));

  LogCapture log;
  EXPECT_FALSE(defaults.setObject(Value::array({Value::null()}), "bad"));
  EXPECT_TRUE(defaults.objectForKey("bad").isNil());
  EXPECT_EQ(log.messages().size(), 1u);
}

TEST(UserDefaultsTest, DamagedFileStartsEmptyWithOneLogLine) {
  TempDir dir;
  FileSystem files(dir.path());
  auto path = files.preferencesDirectory() / "app.plist";
  for (std::string damaged : {std::string("bplist00garbage"), std::string("<plist><array/></plist>")}) {
    ASSERT_TRUE(AtomicFile::write(path, damaged));
    LogCapture log;
    UserDefaults defaults(files, "app");
    EXPECT_TRUE(defaults.dictionaryRepresentation().empty());
    ASSERT_EQ(log.messages().size(), 1u);
    EXPECT_TRUE(log.contains("app.plist"));
    EXPECT_TRUE(defaults.setInteger(1, "k"));
    EXPECT_EQ(UserDefaults(files, "app").integerForKey("k"), 1);
  }
}

TEST(UserDefaultsTest, ConcurrentWritersLoseNothing) {
  TempDir dir;
  FileSystem files(dir.path());
  UserDefaults defaults(files, "app");
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      for (int i = 0; i < 25; ++i) defaults.setInteger(i, "k" + std::to_string(t) + "-" + std::to_string(i));
    });
  for (auto& thread : threads) thread.join();
  UserDefaults reread(files, "app");
  EXPECT_EQ(reread.dictionaryRepresentation().size(), 100u);
  EXPECT_EQ(reread.integerForKey("k3-24"), 24);
}

mode_t modeOf(const std::filesystem::path& path) {
  struct stat info {};
  ::stat(path.c_str(), &info);
  return info.st_mode & 07777;
}

TEST(UserDefaultsTest, TheDataRootAndTheDefaultsFileAreTheOwnersAloneWhateverTheUmask) {
  TempDir dir;
  const mode_t previous = ::umask(0);
  FileSystem files(dir.path() / "install");
  UserDefaults defaults(files, "quillet");
  const bool saved = defaults.setObject(Value("registration-token"), "DeviceID");
  ::umask(previous);
  ASSERT_TRUE(saved);
  EXPECT_EQ(modeOf(files.root()), 0700u);
  EXPECT_EQ(modeOf(defaults.path()), 0600u);
}

}  // namespace
}  // namespace quillet::platform
