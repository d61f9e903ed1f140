#include "platform/files/FileSystem.h"

#include <sys/stat.h>
#include <sys/xattr.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <set>
#include <sstream>

#include "platform/files/AtomicFile.h"
#include "platform/log/Log.h"
#include "platform/support/SharedSlot.h"

namespace quillet::platform {
namespace fs = std::filesystem;

namespace {

// Each mark's extended attribute, and the side record under the root used
// where the file system takes no attributes.
struct MarkNames {
  const char* attribute;
  const char* sideRecord;
};

MarkNames namesOf(FileSystem::Mark mark) {
  switch (mark) {
    case FileSystem::Mark::Immutable:
      return {"user.quillet.immutable", ".immutable"};
    case FileSystem::Mark::ExcludedFromBackup:
      break;
  }
  return {"user.quillet.excluded-from-backup", ".excluded-from-backup"};
}

constexpr FileSystem::Mark kMarks[] = {FileSystem::Mark::ExcludedFromBackup, FileSystem::Mark::Immutable};

// Serializes read-modify-write of side records, which several instances over one root may share.
std::mutex& sideRecordMutex() {
  static std::mutex mutex;
  return mutex;
}

std::string recordKey(const fs::path& path) {
  std::error_code ec;
  fs::path absolute = fs::absolute(path, ec);
  return (ec ? path : absolute).lexically_normal().string();
}

bool isWithin(const std::string& key, const std::string& dirKey) {
  return key == dirKey ||
         (key.size() > dirKey.size() && key.compare(0, dirKey.size(), dirKey) == 0 && key[dirKey.size()] == '/');
}

std::set<std::string> readRecord(const fs::path& recordPath) {
  std::set<std::string> entries;
  auto contents = AtomicFile::read(recordPath);
  if (!contents) return entries;
  std::istringstream lines(*contents);
  for (std::string line; std::getline(lines, line);)
    if (!line.empty()) entries.insert(line);
  return entries;
}

bool writeRecord(const fs::path& recordPath, const std::set<std::string>& entries, Error* error) {
  std::string contents;
  for (const auto& entry : entries) contents += entry + "\n";
  return AtomicFile::write(recordPath, contents, error);
}

}  // namespace

FileSystem::FileSystem(fs::path root) : FileSystem(std::move(root), Options{}) {}

FileSystem::FileSystem(fs::path root, Options options) : root_(std::move(root)), options_(std::move(options)) {
  if (options_.resourceDirectory.empty()) options_.resourceDirectory = root_ / "Resources";
}

fs::path FileSystem::defaultRoot(const std::string& dataDirOption) {
  if (!dataDirOption.empty()) return dataDirOption;
  const char* xdg = std::getenv("XDG_DATA_HOME");
  if (xdg && *xdg) return fs::path(xdg) / "quillet";
  const char* home = std::getenv("HOME");
  return fs::path(home && *home ? home : ".") / ".local" / "share" / "quillet";
}

std::shared_ptr<FileSystem> FileSystem::standard() {
  return SharedSlot<FileSystem>::get([] { return std::make_shared<FileSystem>(defaultRoot()); });
}

void FileSystem::setStandard(std::shared_ptr<FileSystem> fileSystem) {
  SharedSlot<FileSystem>::set(std::move(fileSystem));
}

void FileSystem::ensureRoot() const {
  std::error_code ec;
  if (fs::create_directories(root_, ec)) ::chmod(root_.c_str(), 0700);
}

fs::path FileSystem::ensureDirectory(fs::path dir, bool privateMode) const {
  ensureRoot();
  std::error_code ec;
  fs::create_directories(dir, ec);
  if (ec) Log::writef("Cannot create directory %s: %s", dir.c_str(), ec.message().c_str());
  if (privateMode) ::chmod(dir.c_str(), 0700);
  return dir;
}

fs::path FileSystem::documentsDirectory() const { return ensureDirectory(root_ / "Documents"); }
fs::path FileSystem::cachesDirectory() const { return ensureDirectory(root_ / "Library" / "Caches"); }
fs::path FileSystem::applicationSupportDirectory() const {
  return ensureDirectory(root_ / "Library" / "Application Support");
}
fs::path FileSystem::preferencesDirectory() const { return ensureDirectory(root_ / "Library" / "Preferences"); }
fs::path FileSystem::keychainDirectory() const { return ensureDirectory(root_ / "Keychain", true); }

bool FileSystem::fileExists(const fs::path& path) const {
  std::error_code ec;
  return fs::exists(path, ec);
}

bool FileSystem::removeItem(const fs::path& path, Error* error) const {
  std::error_code ec;
  fs::remove_all(path, ec);
  if (ec) {
    if (error) *error = AtomicFile::makeError(ec.value(), "remove", path);
    return false;
  }
  for (Mark mark : kMarks) {
    if (!fs::exists(sideRecordPath(mark))) continue;
    std::lock_guard lock(sideRecordMutex());
    auto entries = readRecord(sideRecordPath(mark));
    std::string removed = recordKey(path);
    auto before = entries.size();
    std::erase_if(entries, [&](const std::string& key) { return isWithin(key, removed); });
    if (entries.size() != before) writeRecord(sideRecordPath(mark), entries, nullptr);
  }
  return true;
}

bool FileSystem::removeInstallData(Error* error) const {
  return removeItem(root_ / "Documents", error) && removeItem(root_ / "Library", error);
}

fs::path FileSystem::sideRecordPath(Mark mark) const { return root_ / namesOf(mark).sideRecord; }

bool FileSystem::setSideRecord(const fs::path& path, Mark mark, bool on, Error* error) const {
  std::lock_guard lock(sideRecordMutex());
  auto entries = readRecord(sideRecordPath(mark));
  std::string key = recordKey(path);
  bool changed = on ? entries.insert(key).second : entries.erase(key) > 0;
  if (!changed) return true;
  ensureRoot();
  return writeRecord(sideRecordPath(mark), entries, error);
}

bool FileSystem::inSideRecord(const fs::path& path, Mark mark) const {
  std::lock_guard lock(sideRecordMutex());
  return readRecord(sideRecordPath(mark)).count(recordKey(path)) > 0;
}

bool FileSystem::setMark(const fs::path& path, Mark mark, bool on, Error* error) const {
  struct stat info;
  if (::stat(path.c_str(), &info) != 0) {
    if (error) *error = AtomicFile::makeError(errno, "mark", path);
    return false;
  }
  if (options_.useExtendedAttributes) {
    const char* attribute = namesOf(mark).attribute;
    int rc = on ? ::setxattr(path.c_str(), attribute, "1", 1, 0) : ::removexattr(path.c_str(), attribute);
    if (rc == 0 || (!on && errno == ENODATA)) return true;
    if (errno != ENOTSUP) {
      if (error) *error = AtomicFile::makeError(errno, "mark", path);
      return false;
    }
  }
  return setSideRecord(path, mark, on, error);
}

bool FileSystem::hasMark(const fs::path& path, Mark mark, Error* error) const {
  if (!fileExists(path)) {
    if (error) *error = AtomicFile::makeError(ENOENT, "read mark of", path);
    return false;
  }
  if (options_.useExtendedAttributes) {
    char value[8];
    ssize_t n = ::getxattr(path.c_str(), namesOf(mark).attribute, value, sizeof value);
    if (n >= 0) return n > 0 && value[0] == '1';
    if (errno == ENODATA) return false;
    if (errno != ENOTSUP) {
      if (error) *error = AtomicFile::makeError(errno, "read mark of", path);
      return false;
    }
  }
  return inSideRecord(path, mark);
}

bool FileSystem::setExcludedFromBackup(const fs::path& path, bool excluded, Error* error) const {
  return setMark(path, Mark::ExcludedFromBackup, excluded, error);
}

bool FileSystem::isExcludedFromBackup(const fs::path& path, Error* error) const {
  return hasMark(path, Mark::ExcludedFromBackup, error);
}

bool FileSystem::setImmutable(const fs::path& path, bool immutable, Error* error) const {
  return setMark(path, Mark::Immutable, immutable, error);
}

bool FileSystem::isImmutable(const fs::path& path, Error* error) const { return hasMark(path, Mark::Immutable, error); }

}  // namespace quillet::platform
