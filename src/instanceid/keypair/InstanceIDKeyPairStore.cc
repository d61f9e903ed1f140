#include "instanceid/keypair/InstanceIDKeyPairStore.h"

#include "instanceid/support/InstanceIDError.h"
#include "instanceid/support/InstanceIDLogger.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {

namespace {
constexpr const char* kTagPrefix = "com.stikri.iid-";
// The empty subtype: the only key pair the program uses.
const std::string kDefaultSubtype;

std::string errorText(const platform::Error* error) { return error ? error->description() : std::string(); }
}  // namespace

InstanceIDKeyPairStore::InstanceIDKeyPairStore(std::shared_ptr<const InstanceIDEnvironment> env)
    : env_(env), plist_(keyStoreFileName(), std::move(env)) {}

bool InstanceIDKeyPairStore::hasCachedKeyPairs() {
  std::lock_guard lock(mutex_);
  if (cachedKeyPairWithSubtype(kDefaultSubtype, nullptr)) return true;
  removeKeyPairCreationTimePlistWithError(nullptr);
  return false;
}

std::optional<std::string> InstanceIDKeyPairStore::appIdentityWithError(platform::Error* error) {
  const std::shared_ptr<InstanceIDKeyPair> keyPair = loadKeyPairWithError(error);
  if (!keyPair) return std::nullopt;
  if (error) *error = platform::Error();
  std::optional<std::string> appIdentity = InstanceIDKeyPair::appIdentityWithKeyPair(*keyPair);
  if ((!appIdentity || appIdentity->empty()) && error) {
    *error = errorWithInstanceIDErrorCode(InstanceIDErrorCodeInvalidResponse);
  }
  return appIdentity;
}

std::shared_ptr<InstanceIDKeyPair> InstanceIDKeyPairStore::loadKeyPairWithError(platform::Error* error) {
  std::lock_guard lock(mutex_);
  if (keyPair_ && keyPair_->isValid()) return keyPair_;
  if (!keyPair_) keyPair_ = validCachedKeyPairWithSubtype(kDefaultSubtype, error);
  if (!keyPair_) keyPair_ = generateAndSaveKeyWithSubtype(kDefaultSubtype, env_->nowSeconds(), error);
  // A stale pair erased on the way (2005) is no failure once a new pair stands.
  if (keyPair_ && keyPair_->isValid() && error) *error = platform::Error();
  return keyPair_;
}

std::shared_ptr<InstanceIDKeyPair> InstanceIDKeyPairStore::generateAndSaveKeyWithSubtype(const std::string& subtype,
                                                                                         int64_t creationTime,
                                                                                         platform::Error* error) {
  std::lock_guard lock(mutex_);
  const std::string privateTag = privateTagWithSubtype(subtype);
  const std::string publicTag = publicTagWithSubtype(subtype);
  std::shared_ptr<InstanceIDKeyPair> keyPair =
      InstanceIDKeyPair::generateRSA2048KeyPairWithPrivateTag(privateTag, publicTag, *env_, error);
  if (!keyPair || !keyPair->isValid()) return nullptr;

  // Other subtypes' creation times stay beside this one.
  platform::Value::Dictionary entries = plist_.contentAsDictionary().value_or(platform::Value::Dictionary());
  entries[creationTimeKeyWithSubtype(subtype)] = platform::Value(static_cast<long long>(creationTime));
  if (!plist_.writeDictionary(entries, error)) {
    InstanceIDKeyPair::deleteKeyPairWithPrivateTag(privateTag, publicTag, *env_, nullptr);
    iidLogError(platform::format("Failed to save keypair data to plist %@", errorText(error)));
    return nullptr;
  }
  return keyPair;
}

std::shared_ptr<InstanceIDKeyPair> InstanceIDKeyPairStore::validCachedKeyPairWithSubtype(const std::string& subtype,
                                                                                         platform::Error* error) {
  std::lock_guard lock(mutex_);
  const std::optional<platform::Value::Dictionary> entries = plist_.contentAsDictionary();
  if (entries && entries->contains(creationTimeKeyWithSubtype(subtype))) {
    return cachedKeyPairWithSubtype(subtype, error);
  }
  // Items without a creation time outlived an earlier install of the app.
  deleteSavedKeyPairWithSubtype(subtype, nullptr);
  if (error) *error = errorWithInstanceIDErrorCode(InstanceIDErrorCodeStaleKeyPair);
  return nullptr;
}

std::shared_ptr<InstanceIDKeyPair> InstanceIDKeyPairStore::cachedKeyPairWithSubtype(const std::string& subtype,
                                                                                    platform::Error* error) {
  return InstanceIDKeyPair::keyPairForPrivateKeyTag(privateTagWithSubtype(subtype), publicTagWithSubtype(subtype),
                                                    *env_, error);
}

bool InstanceIDKeyPairStore::deleteSavedKeyPairWithSubtype(const std::string& subtype, platform::Error* error) {
  std::lock_guard lock(mutex_);
  std::optional<platform::Value::Dictionary> entries = plist_.contentAsDictionary();
  if (entries && entries->erase(creationTimeKeyWithSubtype(subtype)) > 0 && !plist_.writeDictionary(*entries, error)) {
    iidLogError(platform::format("Unable to remove keypair creation time from plist %@", errorText(error)));
  }
  if (!InstanceIDKeyPair::deleteKeyPairWithPrivateTag(privateTagWithSubtype(subtype), publicTagWithSubtype(subtype),
                                                      *env_, error)) {
    iidLogError("Unable to remove RSA keypair");
    return false;
  }
  keyPair_ = nullptr;
  return true;
}

bool InstanceIDKeyPairStore::removeKeyPairCreationTimePlistWithError(platform::Error* error) {
  std::lock_guard lock(mutex_);
  if (!plist_.deleteFile(error)) {
    iidLogError("Unable to delete keypair creation times plist");
    return false;
  }
  return true;
}

std::string InstanceIDKeyPairStore::publicTagWithSubtype(const std::string& subtype) {
  return platform::format("%@%@%@", kTagPrefix, subtype, "|P|");
}

std::string InstanceIDKeyPairStore::privateTagWithSubtype(const std::string& subtype) {
  return platform::format("%@%@%@", kTagPrefix, subtype, "|K|");
}

std::string InstanceIDKeyPairStore::creationTimeKeyWithSubtype(const std::string& subtype) {
  return platform::format("%@%@%@", subtype, "|S|", "cre");
}

std::string InstanceIDKeyPairStore::keyStoreFileName() { return platform::format("%@keypair", kTagPrefix); }

}  // namespace quillet::instanceid
