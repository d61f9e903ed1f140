#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/files/FileSystem.h"

namespace quillet::news {

// Where the local news file lies and how it gets there: "News.sqlite" in the
// user's documents directory, copied once from the app's resource directory.
// The shell calls copyDatabaseIfNeeded at launch; the store asks getDBPath
// for every operation. Holds the file system shared; main thread.
class NewsDatabaseFile {
 public:
  static constexpr const char* kFileName = "News.sqlite";

  explicit NewsDatabaseFile(std::shared_ptr<const platform::FileSystem> fileSystem);

  // The full path of "News.sqlite" in Documents; logs "dbpath : %@" with the directory.
  std::string getDBPath() const;

  // Copies the packaged "News.sqlite" to getDBPath() when no file stands
  // there. An existing file is never touched; a failed copy is ignored.
  void copyDatabaseIfNeeded() const;

  // The directory the build puts the packaged resources in; the app gives
  // it to its FileSystem as the resource directory.
  static std::filesystem::path builtResourceDirectory();

 private:
  std::shared_ptr<const platform::FileSystem> fileSystem_;
};

}  // namespace quillet::news
