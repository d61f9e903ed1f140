#include "messaging/checkin/MSGCheckinStore.h"

#include "platform/log/Log.h"
#include "platform/plist/PropertyListFile.h"
#include "platform/value/Format.h"

namespace quillet::messaging {
namespace {

std::string stringIn(const platform::Value::Dictionary& dictionary, const char* key) {
  const auto found = dictionary.find(key);
  return found != dictionary.end() && found->second.isString() ? found->second.string() : std::string();
}

}  // namespace

MSGCheckinStore::MSGCheckinStore(std::shared_ptr<const platform::FileSystem> fileSystem, platform::Keychain& keychain)
    : MSGCheckinStore(kCheckinFileName, std::move(fileSystem),
                      std::make_shared<MSGAuthKeychain>(kCheckinKeychainGeneric, keychain)) {}

MSGCheckinStore::MSGCheckinStore(std::string fileName, std::shared_ptr<const platform::FileSystem> fileSystem,
                                 std::shared_ptr<MSGAuthKeychain> keychain)
    : fileName_(std::move(fileName)), fileSystem_(std::move(fileSystem)), keychain_(std::move(keychain)) {}

std::filesystem::path MSGCheckinStore::pathForCheckinPlist() const {
  return fileSystem_->documentsDirectory() / platform::format("%@.plist", fileName_);
}

bool MSGCheckinStore::hasCheckinPlist() const { return fileSystem_->fileExists(pathForCheckinPlist()); }

std::shared_ptr<MSGCheckinPreferences> MSGCheckinStore::cachedCheckinPreferences() {
  platform::Error error;
  const auto text = keychain_->passwordForService(kCheckinKeychainService, kCheckinKeychainAccount, &error);
  if (!text && error.code != platform::Keychain::statusItemNotFound) {
    platform::Log::write(
        platform::format("Error while reading checkin auth credentials from keychain %@", error.description()));
  }
  auto preferences = text ? MSGCheckinPreferences::preferencesFromKeychainContents(*text) : nullptr;

  if (!hasCheckinPlist()) return nullptr;
  const auto loaded = platform::PropertyListFile::load(pathForCheckinPlist(), "checkin");
  const platform::Value::Dictionary contents =
      loaded && loaded->isDictionary() ? loaded->dictionaryItems() : platform::Value::Dictionary();
  const std::string plistDeviceID = stringIn(contents, MSGCheckinPreferences::kDeviceAuthIdKey);
  const std::string plistSecret = stringIn(contents, MSGCheckinPreferences::kSecretTokenKey);
  const bool plistHasPair = !plistDeviceID.empty() && !plistSecret.empty();
  if (preferences) {
    if (contents.size() == 6 && plistHasPair) {
      preferences = std::make_shared<MSGCheckinPreferences>(plistDeviceID, plistSecret);
    }
  } else if (plistHasPair) {
    preferences = std::make_shared<MSGCheckinPreferences>(plistDeviceID, plistSecret);
  } else {
    return nullptr;
  }
  preferences->updateWithCheckinPlistContents(contents);
  return preferences;
}

bool MSGCheckinStore::removeCheckinPreferences(platform::Error* error) {
  platform::Error keychainError;
  if (!keychain_->removePasswordForService(kCheckinKeychainService, kCheckinKeychainAccount, &keychainError) &&
      keychainError.code != platform::Keychain::statusItemNotFound) {
    if (error) *error = keychainError;
    return false;
  }
  const auto path = pathForCheckinPlist();
  return !fileSystem_->fileExists(path) || fileSystem_->removeItem(path, error);
}

}  // namespace quillet::messaging
