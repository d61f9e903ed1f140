#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "messaging/checkin/MSGAuthKeychain.h"
#include "messaging/checkin/MSGCheckinCache.h"
#include "platform/files/FileSystem.h"
#include "platform/keychain/Keychain.h"

namespace quillet::messaging {

// A read-only mirror of the credential that device check-in writes: the
// keychain item of generic "com.stikri.iid" and the plist "g-checkin" in
// Documents. Credentials count only beside a plist. The keychain is not
// owned and outlives the store. Main queue.
class MSGCheckinStore : public MSGCheckinCache {
 public:
  static constexpr const char* kCheckinFileName = "g-checkin";
  static constexpr const char* kCheckinKeychainGeneric = "com.stikri.iid";
  static constexpr const char* kCheckinKeychainService = "com.stikri.iid.checkin-service";
  static constexpr const char* kCheckinKeychainAccount = "com.stikri.iid.checkin-account";

  MSGCheckinStore(std::shared_ptr<const platform::FileSystem> fileSystem, platform::Keychain& keychain);
  MSGCheckinStore(std::string fileName, std::shared_ptr<const platform::FileSystem> fileSystem,
                  std::shared_ptr<MSGAuthKeychain> keychain);

  std::shared_ptr<MSGCheckinPreferences> cachedCheckinPreferences() override;
  bool removeCheckinPreferences(platform::Error* error) override;
  std::filesystem::path pathForCheckinPlist() const;
  bool hasCheckinPlist() const;

 private:
  std::string fileName_;
  std::shared_ptr<const platform::FileSystem> fileSystem_;
  std::shared_ptr<MSGAuthKeychain> keychain_;
};

}  // namespace quillet::messaging
