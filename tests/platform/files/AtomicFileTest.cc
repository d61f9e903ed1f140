#include "platform/files/AtomicFile.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "support/TempDir.h"

namespace quillet::platform {
namespace {

using quillet::testing::TempDir;

TEST(AtomicFileTest, WritesReadsAndAppliesModes) {
  TempDir dir;
  auto path = dir.path() / "secret";
  std::string binary("a\0b\xff", 4);
  ASSERT_TRUE(AtomicFile::write(path, binary, nullptr, 0600));
  EXPECT_EQ(AtomicFile::read(path), binary);
  struct stat info;
  ASSERT_EQ(::stat(path.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0600u);

  // A rewrite without a mode keeps the file's mode; leaves no temporary behind.
  ASSERT_TRUE(AtomicFile::write(path, "second"));
  ASSERT_EQ(::stat(path.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0600u);
  EXPECT_EQ(AtomicFile::read(path), "second");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);

  ASSERT_TRUE(AtomicFile::write(path, ""));
  EXPECT_EQ(AtomicFile::read(path), "");
}

TEST(AtomicFileTest, FailuresAreErrorValues) {
  TempDir dir;
  Error error;
  EXPECT_FALSE(AtomicFile::read(dir.path() / "missing", &error));
  EXPECT_EQ(error.domain, AtomicFile::errorDomain);
  EXPECT_EQ(error.code, ENOENT);
  EXPECT_NE(error.userInfo["NSLocalizedDescription"].string().find("missing"), std::string::npos);

  EXPECT_FALSE(AtomicFile::read(dir.path(), &error));
  EXPECT_EQ(error.code, EISDIR);
  EXPECT_FALSE(AtomicFile::write(dir.path() / "no-such-dir" / "file", "x", &error));
  EXPECT_EQ(error.code, ENOENT);
}

// A writer killed at arbitrary moments must leave the old or the new
// contents, never a mix, a truncation or nothing.
TEST(AtomicFileTest, SurvivesKillDuringRewrite) {
  TempDir dir;
  auto path = dir.path() / "data";
  const std::string a(1 << 20, 'A');
  const std::string b(1 << 20, 'B');
  ASSERT_TRUE(AtomicFile::write(path, a));
  const int delaysMicros[] = {300, 1500, 4000, 700, 9000, 2500, 12000, 100};
  for (int delay : delaysMicros) {
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (unsigned i = 0;; ++i) AtomicFile::write(path, (i & 1) ? a : b);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(delay));
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    auto contents = AtomicFile::read(path);
    ASSERT_TRUE(contents);
    EXPECT_TRUE(*contents == a || *contents == b) << "size " << contents->size() << " after " << delay << "us";
  }
}

}  // namespace
}  // namespace quillet::platform
