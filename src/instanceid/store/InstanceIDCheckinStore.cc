#include "instanceid/store/InstanceIDCheckinStore.h"

#include "instanceid/support/InstanceIDLogger.h"
#include "platform/keychain/Keychain.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {
namespace {

std::string stringIn(const platform::Value::Dictionary& dictionary, const char* key) {
  const auto found = dictionary.find(key);
  return found != dictionary.end() && found->second.isString() ? found->second.string() : std::string();
}

}  // namespace

InstanceIDCheckinStore::InstanceIDCheckinStore(const std::string& checkinPlistFileName,
                                               std::shared_ptr<const InstanceIDEnvironment> env)
    : InstanceIDCheckinStore(std::make_shared<InstanceIDBackupExcludedPlist>(checkinPlistFileName, env),
                             std::make_shared<InstanceIDAuthKeychain>(kCheckinKeychainGeneric, env)) {}

InstanceIDCheckinStore::InstanceIDCheckinStore(std::shared_ptr<InstanceIDBackupExcludedPlist> plist,
                                               std::shared_ptr<InstanceIDAuthKeychain> keychain)
    : plist_(std::move(plist)), keychain_(std::move(keychain)) {
  moveCheckinAuthPreferencesToKeychain();
}

bool InstanceIDCheckinStore::hasCheckinPlist() const { return plist_->doesFileExist(); }

bool InstanceIDCheckinStore::saveCheckinPreferences(const InstanceIDCheckinPreferences& preferences,
                                                    platform::Error* error) {
  const auto keychainContent = preferences.checkinKeychainContent();
  const auto plistContents = preferences.checkinPlistContents();
  if (!keychainContent || keychainContent->empty() || plistContents.empty()) return false;
  if (!keychain_->setPassword(*keychainContent, kCheckinKeychainService, std::nullopt, kCheckinKeychainAccount,
                              error)) {
    return false;
  }
  if (!plist_->writeDictionary(plistContents, error)) {
    // Keychain and plist change together or not at all.
    keychain_->removePasswordForService(kCheckinKeychainService, kCheckinKeychainAccount, nullptr);
    return false;
  }
  return true;
}

bool InstanceIDCheckinStore::removeCheckinPreferencesWithError(platform::Error* error) {
  if (!keychain_->removePasswordForService(kCheckinKeychainService, kCheckinKeychainAccount, error)) {
    if (error) {
      iidLogError(platform::format("Failed to remove checkin auth credentials from Keychain %@", error->description()));
    }
    return false;
  }
  return plist_->deleteFile(error);
}

std::shared_ptr<InstanceIDCheckinPreferences> InstanceIDCheckinStore::cachedCheckinPreferences() {
  platform::Error error;
  const auto text = keychain_->passwordForService(kCheckinKeychainService, kCheckinKeychainAccount, &error);
  if (!text) {
    if (error.code != platform::Keychain::statusItemNotFound) {
      iidLogError(platform::format("Failed to read checkin auth credentials from keychain %@", error.description()));
    }
    return nullptr;
  }
  auto preferences = InstanceIDCheckinPreferences::preferencesFromKeychainContents(*text);
  if (!preferences) {
    iidLogError("Cannot parse invalid checkin auth credentials in Keychain. Will delete credentials");
  }

  // The field, not a new read: the move at creation has filled it.
  const platform::Value::Dictionary contents = plist_->cachedPlistContents().value_or(platform::Value::Dictionary());
  const std::string plistDeviceID = stringIn(contents, InstanceIDCheckinPreferences::kDeviceAuthIdKey);
  const std::string plistSecret = stringIn(contents, InstanceIDCheckinPreferences::kSecretTokenKey);
  const bool plistHasPair = !plistDeviceID.empty() && !plistSecret.empty();
  if (preferences) {
    if (contents.size() == 6 && plistHasPair) {
      preferences = std::make_shared<InstanceIDCheckinPreferences>(plistDeviceID, plistSecret);
    }
  } else if (plistHasPair) {
    preferences = std::make_shared<InstanceIDCheckinPreferences>(plistDeviceID, plistSecret);
  } else {
    return nullptr;
  }
  preferences->updateWithCheckinPlistContents(contents);
  return preferences;
}

void InstanceIDCheckinStore::moveCheckinAuthPreferencesToKeychain() {
  auto contents = plist_->contentAsDictionary();
  if (!contents || contents->empty()) return;
  const std::string deviceID = stringIn(*contents, InstanceIDCheckinPreferences::kDeviceAuthIdKey);
  const std::string secret = stringIn(*contents, InstanceIDCheckinPreferences::kSecretTokenKey);
  if (deviceID.empty() || secret.empty()) return;

  const auto keychainContent = InstanceIDCheckinPreferences(deviceID, secret).checkinKeychainContent();
  platform::Error error;
  if (!keychain_->setPassword(*keychainContent, kCheckinKeychainService, std::nullopt, kCheckinKeychainAccount,
                              &error)) {
    iidLogError(platform::format(
        "Failed to save checkin preferences to keychain. Will not remove them from the plist %@", error.description()));
    return;
  }
  contents->erase(InstanceIDCheckinPreferences::kDeviceAuthIdKey);
  contents->erase(InstanceIDCheckinPreferences::kSecretTokenKey);
  if (!plist_->writeDictionary(*contents, nullptr)) {
    iidLogError("Cannot save checkin preferences with deleted secret to plist");
  }
}

}  // namespace quillet::instanceid
