#include "instanceid/store/InstanceIDBackupExcludedPlist.h"

#include "instanceid/support/InstanceIDLogger.h"
#include "platform/files/AtomicFile.h"
#include "platform/plist/PropertyList.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {

InstanceIDBackupExcludedPlist::InstanceIDBackupExcludedPlist(std::string fileName,
                                                             std::shared_ptr<const InstanceIDEnvironment> env)
    : fileName_(std::move(fileName)), env_(std::move(env)) {}

std::filesystem::path InstanceIDBackupExcludedPlist::pathWithName(const std::string& name,
                                                                  const platform::FileSystem& fileSystem) {
  return fileSystem.documentsDirectory() / platform::format("%@.plist", name);
}

std::filesystem::path InstanceIDBackupExcludedPlist::plistPath() const {
  return pathWithName(fileName_, *env_->fileSystem);
}

bool InstanceIDBackupExcludedPlist::doesFileExist() const { return env_->fileSystem->fileExists(plistPath()); }

bool InstanceIDBackupExcludedPlist::writeDictionary(const platform::Value::Dictionary& dictionary,
                                                    platform::Error* error) {
  const auto path = plistPath();
  const auto encoded = platform::PropertyList::write(platform::Value(dictionary), platform::PropertyList::Format::XML);
  // Owner only, whatever the umask: the files hold the device's credentials and tokens.
  if (!encoded || !platform::AtomicFile::write(path, *encoded, nullptr, 0600)) {
    iidLogError(platform::format("Failed to write to %@.plist", fileName_));
    return false;
  }
  cachedPlistContents_ = dictionary;

  if (env_->fileSystem->isExcludedFromBackup(path)) return true;
  platform::Error excludeError;
  if (!env_->fileSystem->setExcludedFromBackup(path, true, &excludeError)) {
    if (error) *error = excludeError;
    const platform::Value shown = error ? platform::Value(excludeError.description()) : platform::Value("");
    iidLogError(platform::format("Error excluding %@ from backup, %@", path.filename().string(), shown));
    return false;
  }
  return true;
}

bool InstanceIDBackupExcludedPlist::deleteFile(platform::Error* error) {
  bool removed = true;
  const auto path = plistPath();
  if (env_->fileSystem->fileExists(path)) removed = env_->fileSystem->removeItem(path, error);
  cachedPlistContents_.reset();
  return removed;
}

std::optional<platform::Value::Dictionary> InstanceIDBackupExcludedPlist::contentAsDictionary() {
  if (cachedPlistContents_) return cachedPlistContents_;
  const auto path = plistPath();
  if (!env_->fileSystem->fileExists(path)) return std::nullopt;
  const auto data = platform::AtomicFile::read(path);
  if (!data) return std::nullopt;
  const platform::Value contents = platform::PropertyList::read(*data);
  if (!contents.isDictionary()) return std::nullopt;
  cachedPlistContents_ = contents.dictionaryItems();
  return cachedPlistContents_;
}

}  // namespace quillet::instanceid
