#include "news/store/NewsDatabaseFile.h"

#include <system_error>
#include <utility>

#include "platform/log/Log.h"
#include "platform/value/Format.h"

namespace quillet::news {

NewsDatabaseFile::NewsDatabaseFile(std::shared_ptr<const platform::FileSystem> fileSystem)
    : fileSystem_(std::move(fileSystem)) {}

std::string NewsDatabaseFile::getDBPath() const {
  const std::filesystem::path documents = fileSystem_->documentsDirectory();
  platform::Log::write(platform::format("dbpath : %@", documents.string()));
  return (documents / kFileName).string();
}

void NewsDatabaseFile::copyDatabaseIfNeeded() const {
  const std::filesystem::path target = getDBPath();
  if (fileSystem_->fileExists(target)) return;
  std::error_code ignored;
  if (!std::filesystem::copy_file(fileSystem_->resourceDirectory() / kFileName, target, ignored)) return;
  // The copy would take the resource's mode; the store is the owner's alone
  // and writable, even from a read-only resource.
  std::filesystem::permissions(target, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
                               std::filesystem::perm_options::replace, ignored);
}

std::filesystem::path NewsDatabaseFile::builtResourceDirectory() { return QUILLET_RESOURCE_DIR; }

}  // namespace quillet::news
