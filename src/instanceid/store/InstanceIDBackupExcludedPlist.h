#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "instanceid/support/InstanceIDEnvironment.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::instanceid {

// A small property list in the Documents directory that is kept out of
// device backups ("<fileName>.plist"). Remembers the last contents read or
// written. Not thread-safe: used from one queue at a time.
class InstanceIDBackupExcludedPlist {
 public:
  InstanceIDBackupExcludedPlist(std::string fileName, std::shared_ptr<const InstanceIDEnvironment> env);

  // Writes atomically, caches a copy and marks the file as not backed up
  // (once). False with a log line when the write or the marking fails; a
  // failed write leaves `error` and the cache untouched, a failed marking
  // leaves the new file on disk and in the cache.
  bool writeDictionary(const platform::Value::Dictionary& dictionary, platform::Error* error);
  // Removes the file if present and forgets the cache; true when the file is gone.
  bool deleteFile(platform::Error* error);
  // The cache, else the file's contents (cached); nullopt when the file is
  // absent or is not a dictionary property list.
  std::optional<platform::Value::Dictionary> contentAsDictionary();
  const std::optional<platform::Value::Dictionary>& cachedPlistContents() const { return cachedPlistContents_; }

  std::filesystem::path plistPath() const;
  bool doesFileExist() const;
  const std::string& fileName() const { return fileName_; }

  // Documents/<name>.plist.
  static std::filesystem::path pathWithName(const std::string& name, const platform::FileSystem& fileSystem);

 private:
  std::string fileName_;
  std::shared_ptr<const InstanceIDEnvironment> env_;
  std::optional<platform::Value::Dictionary> cachedPlistContents_;
};

}  // namespace quillet::instanceid
