#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/value/Error.h"

namespace quillet::platform {

// The per-install data root of the program and its standard directories:
//   <root>/Documents
//   <root>/Library/Caches
//   <root>/Library/Application Support
//   <root>/Library/Preferences        (the defaults store)
//   <root>/Keychain                   (the secret store; survives a reinstall)
// plus a read-only resource directory of packaged resources that lives
// apart from the root. Directory getters create the directory on demand
// (a failure to create is logged once per call and the path still returned).
// The root is created with mode 0700, whatever the umask: it holds the
// program's credentials, so only its owner may enter it.
// Instances are immutable after construction and usable from any thread.
class FileSystem {
 public:
  // Marks a file can bear, as the phone's file attributes: kept out of
  // device backups, and immutable (the real attribute needs root, so the
  // mark is kept beside the file like the backup exclusion).
  enum class Mark { ExcludedFromBackup, Immutable };

  struct Options {
    std::filesystem::path resourceDirectory;  // empty: <root>/Resources
    // Record backup exclusion in an extended attribute when the file system
    // takes one; when false (or unsupported) a side record under the root is used.
    bool useExtendedAttributes = true;
  };

  explicit FileSystem(std::filesystem::path root);
  FileSystem(std::filesystem::path root, Options options);

  // The default data root: `dataDirOption` (the app's --data-dir) when not
  // empty, else $XDG_DATA_HOME/quillet, else $HOME/.local/share/quillet.
  static std::filesystem::path defaultRoot(const std::string& dataDirOption = "");

  // The process-wide instance behind the shared stores (standard defaults,
  // the keychain). Built on first use from defaultRoot() unless set before.
  static std::shared_ptr<FileSystem> standard();
  static void setStandard(std::shared_ptr<FileSystem> fileSystem);

  const std::filesystem::path& root() const { return root_; }
  std::filesystem::path documentsDirectory() const;
  std::filesystem::path cachesDirectory() const;
  std::filesystem::path applicationSupportDirectory() const;
  std::filesystem::path preferencesDirectory() const;
  std::filesystem::path keychainDirectory() const;  // mode 0700
  const std::filesystem::path& resourceDirectory() const { return options_.resourceDirectory; }

  bool fileExists(const std::filesystem::path& path) const;
  // Removes a file or a directory tree; true when it is gone (also when it was never there).
  bool removeItem(const std::filesystem::path& path, Error* error = nullptr) const;

  // Marks a file as kept out of device backups (or clears the mark). The mark
  // is persistent and belongs to the file: it goes when the file is removed
  // through removeItem. Fails with ENOENT when the file does not exist.
  bool setExcludedFromBackup(const std::filesystem::path& path, bool excluded, Error* error = nullptr) const;
  // Whether the file bears the mark; false with `error` when it cannot be read.
  bool isExcludedFromBackup(const std::filesystem::path& path, Error* error = nullptr) const;
  // The immutable mark, read and cleared the same way. It records the
  // attribute; it does not stop this process from writing the file.
  bool setImmutable(const std::filesystem::path& path, bool immutable, Error* error = nullptr) const;
  bool isImmutable(const std::filesystem::path& path, Error* error = nullptr) const;
  // Any mark: sets or clears it, reads it.
  bool setMark(const std::filesystem::path& path, Mark mark, bool on, Error* error = nullptr) const;
  bool hasMark(const std::filesystem::path& path, Mark mark, Error* error = nullptr) const;

  // What deleting and installing the app again does: removes Documents and
  // Library (defaults, caches, support files) and keeps the keychain.
  bool removeInstallData(Error* error = nullptr) const;

 private:
  std::filesystem::path ensureDirectory(std::filesystem::path dir, bool privateMode = false) const;
  void ensureRoot() const;
  std::filesystem::path sideRecordPath(Mark mark) const;
  bool setSideRecord(const std::filesystem::path& path, Mark mark, bool on, Error* error) const;
  bool inSideRecord(const std::filesystem::path& path, Mark mark) const;

  std::filesystem::path root_;
  Options options_;
};

}  // namespace quillet::platform
