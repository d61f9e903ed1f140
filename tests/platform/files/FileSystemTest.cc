#include "platform/files/FileSystem.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>

#include "platform/files/AtomicFile.h"
#include "platform/files/DiskSpace.h"
#include "support/TempDir.h"

namespace quillet::platform {
namespace {

using quillet::testing::TempDir;
namespace fs = std::filesystem;

TEST(FileSystemTest, StandardDirectoriesAreMadeOnDemand) {
  TempDir dir;
  FileSystem files(dir.path() / "root", {.resourceDirectory = dir.path() / "res"});
  EXPECT_FALSE(fs::exists(dir.path() / "root"));
  EXPECT_EQ(files.documentsDirectory(), dir.path() / "root" / "Documents");
  EXPECT_TRUE(fs::is_directory(files.documentsDirectory()));
  EXPECT_TRUE(fs::is_directory(files.cachesDirectory()));
  EXPECT_TRUE(fs::is_directory(files.applicationSupportDirectory()));
  EXPECT_TRUE(fs::is_directory(files.preferencesDirectory()));
  struct stat info;
  ASSERT_EQ(::stat(files.keychainDirectory().c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0700u);
  EXPECT_EQ(files.resourceDirectory(), dir.path() / "res");
  EXPECT_EQ(FileSystem(dir.path()).resourceDirectory(), dir.path() / "Resources");
}

TEST(FileSystemTest, DefaultRootPrefersOptionThenXdgThenHome) {
  const char* oldXdg = std::getenv("XDG_DATA_HOME");
  std::string savedXdg = oldXdg ? oldXdg : "";
  EXPECT_EQ(FileSystem::defaultRoot("/opt/d"), fs::path("/opt/d"));
  setenv("XDG_DATA_HOME", "/x", 1);
  EXPECT_EQ(FileSystem::defaultRoot(), fs::path("/x/quillet"));
  unsetenv("XDG_DATA_HOME");
  EXPECT_EQ(FileSystem::defaultRoot(), fs::path(std::getenv("HOME")) / ".local/share/quillet");
  if (oldXdg) setenv("XDG_DATA_HOME", savedXdg.c_str(), 1);
}

// The mark must persist on the file, survive its atomic rewrite, and go with
// its removal; both with attributes and with the side record.
class BackupExclusionTest : public ::testing::TestWithParam<bool> {};

TEST_P(BackupExclusionTest, MarkPersistsAndFollowsTheFile) {
  TempDir dir;
  FileSystem files(dir.path(), {.resourceDirectory = {}, .useExtendedAttributes = GetParam()});
  auto path = files.documentsDirectory() / "g.plist";
  Error error;
  EXPECT_FALSE(files.setExcludedFromBackup(path, true, &error));
  EXPECT_EQ(error.code, ENOENT);

  ASSERT_TRUE(AtomicFile::write(path, "1"));
  EXPECT_FALSE(files.isExcludedFromBackup(path));
  ASSERT_TRUE(files.setExcludedFromBackup(path, true));
  EXPECT_TRUE(FileSystem(dir.path(), {.resourceDirectory = {}, .useExtendedAttributes = GetParam()})
                  .isExcludedFromBackup(path));
  ASSERT_TRUE(AtomicFile::write(path, "2"));
  EXPECT_TRUE(files.isExcludedFromBackup(path));

  ASSERT_TRUE(files.setExcludedFromBackup(path, false));
  EXPECT_FALSE(files.isExcludedFromBackup(path));
  ASSERT_TRUE(files.setExcludedFromBackup(path, true));
  ASSERT_TRUE(files.removeItem(path));
  ASSERT_TRUE(AtomicFile::write(path, "3"));
  EXPECT_FALSE(files.isExcludedFromBackup(path));
}

TEST_P(BackupExclusionTest, TheImmutableMarkIsReadAndClearedApartFromTheBackupMark) {
  TempDir dir;
  FileSystem files(dir.path(), {.resourceDirectory = {}, .useExtendedAttributes = GetParam()});
  auto path = files.documentsDirectory() / "log-1";
  ASSERT_TRUE(AtomicFile::write(path, "entry"));
  EXPECT_FALSE(files.isImmutable(path));
  ASSERT_TRUE(files.setImmutable(path, true));
  EXPECT_TRUE(files.isImmutable(path));
  EXPECT_FALSE(files.isExcludedFromBackup(path));
  ASSERT_TRUE(files.setExcludedFromBackup(path, true));
  ASSERT_TRUE(files.setImmutable(path, false));
  EXPECT_FALSE(files.isImmutable(path));
  EXPECT_TRUE(files.isExcludedFromBackup(path));
  ASSERT_TRUE(files.setImmutable(path, true));
  ASSERT_TRUE(files.removeItem(path));
  ASSERT_TRUE(AtomicFile::write(path, "again"));
  EXPECT_FALSE(files.isImmutable(path));
}

INSTANTIATE_TEST_SUITE_P(Both, BackupExclusionTest, ::testing::Values(true, false));

TEST(FileSystemTest, RemoveInstallDataKeepsTheKeychain) {
  TempDir dir;
  FileSystem files(dir.path());
  ASSERT_TRUE(AtomicFile::write(files.documentsDirectory() / "d", "d"));
  ASSERT_TRUE(AtomicFile::write(files.preferencesDirectory() / "p", "p"));
  ASSERT_TRUE(AtomicFile::write(files.keychainDirectory() / "k", "k"));
  ASSERT_TRUE(files.removeInstallData());
  EXPECT_FALSE(files.fileExists(dir.path() / "Documents" / "d"));
  EXPECT_FALSE(files.fileExists(dir.path() / "Library" / "Preferences" / "p"));
  EXPECT_TRUE(files.fileExists(dir.path() / "Keychain" / "k"));
  EXPECT_TRUE(files.removeItem(dir.path() / "never-there"));
}

TEST(DiskSpaceTest, ReadsTheDiskOrTheFigureATestSet) {
  TempDir dir;
  auto free = DiskSpace::freeBytes(dir.path());
  ASSERT_TRUE(free);
  EXPECT_GT(*free, 0u);
  EXPECT_FALSE(DiskSpace::freeBytes(dir.path() / "missing"));
  DiskSpace::setOverride(0);
  EXPECT_EQ(DiskSpace::freeBytes(dir.path() / "missing"), 0u);
  DiskSpace::setOverride(std::nullopt);
  EXPECT_TRUE(DiskSpace::freeBytes(dir.path()));
}

}  // namespace
}  // namespace quillet::platform
