#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <vector>

#include "platform/files/FileSystem.h"
#include "platform/keychain/KeychainItem.h"
#include "platform/keychain/KeychainQuery.h"

namespace quillet::platform {

// The per-install secret item store, with the phone's status codes. Items
// live in <root>/Keychain/keychain.plist (directory 0700, file 0600), apart
// from Documents and the defaults, so that deleting the app's data
// (FileSystem::removeInstallData) leaves them in place. Every change is
// written atomically before it returns; a change that cannot be written is
// undone and reported as statusIO. A file that cannot be read is reported in
// one log line and the store starts empty. All operations are thread-safe.
class Keychain {
 public:
  static constexpr int32_t statusSuccess = 0;
  static constexpr int32_t statusIO = -36;
  static constexpr int32_t statusParam = -50;
  static constexpr int32_t statusDuplicateItem = -25299;
  static constexpr int32_t statusItemNotFound = -25300;

  enum class MatchLimit { One, All };

  // Loads the store under `fileSystem`'s root.
  explicit Keychain(const FileSystem& fileSystem);

  // The process-wide store over FileSystem::standard().
  static Keychain& standard();

  // Copies the first matching item (in the order added) or all of them into
  // `results` (replaced; may be null to test for presence). statusItemNotFound when none match.
  int32_t copyMatching(const KeychainQuery& query, MatchLimit limit, std::vector<KeychainItem>* results) const;

  // Adds an item. statusDuplicateItem when an item with the same primary key
  // exists: for generic passwords the service and account, for keys the
  // application tag and the "keyClass" attribute. statusParam when the
  // attributes are not property-list values.
  int32_t add(const KeychainItem& item);

  // Deletes every matching item; statusItemNotFound when none match.
  int32_t deleteMatching(const KeychainQuery& query);

  const std::filesystem::path& path() const { return path_; }

 private:
  void load();
  bool persistLocked() const;

  std::filesystem::path path_;
  mutable std::mutex mutex_;
  std::vector<KeychainItem> items_;
};

}  // namespace quillet::platform
