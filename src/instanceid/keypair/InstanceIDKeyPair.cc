#include "instanceid/keypair/InstanceIDKeyPair.h"

#include "instanceid/keypair/InstanceIDKeyPairUtilities.h"
#include "instanceid/support/InstanceIDError.h"
#include "instanceid/support/InstanceIDLogger.h"
#include "platform/keychain/Keychain.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {

namespace {

// The code of a failed generation when the keychain gave no status.
constexpr int32_t kKeyGenerationFailedStatus = -1;

platform::Value::Bytes tagBytes(const std::string& tag) { return platform::Value::Bytes(tag.begin(), tag.end()); }

platform::KeychainItem keyItem(const std::string& tag, const char* keyClass, platform::Value::Bytes der) {
  platform::KeychainItem item;
  item.itemClass = platform::KeychainItemClass::Key;
  item.applicationTag = tagBytes(tag);
  item.attributes = {{"keyType", platform::Value("RSA")},
                     {"keyClass", platform::Value(keyClass)},
                     {"isPermanent", platform::Value(true)}};
  item.data = std::move(der);
  return item;
}

std::optional<platform::KeychainItem> keyItemWithTag(const std::string& tag, const InstanceIDEnvironment& env) {
  if (tag.empty()) return std::nullopt;
  std::vector<platform::KeychainItem> items;
  const int32_t status =
      env.keychain->copyMatching(InstanceIDKeyPair::queryDictWithTag(tag), platform::Keychain::MatchLimit::One, &items);
  if (status != platform::Keychain::statusSuccess || items.empty()) return std::nullopt;
  return items.front();
}

// Adds both items, or neither: the private item goes again when the public one fails.
int32_t addKeyItems(const platform::KeychainItem& privateItem, const platform::KeychainItem& publicItem,
                    platform::Keychain& keychain) {
  int32_t status = keychain.add(privateItem);
  if (status != platform::Keychain::statusSuccess) return status;
  status = keychain.add(publicItem);
  if (status != platform::Keychain::statusSuccess) {
    keychain.deleteMatching(InstanceIDKeyPair::queryDictWithTag(
        std::string(privateItem.applicationTag.begin(), privateItem.applicationTag.end())));
  }
  return status;
}

}  // namespace

InstanceIDKeyPair::InstanceIDKeyPair(std::optional<platform::RsaKeyPair> privateKey,
                                     std::optional<platform::RsaPublicKey> publicKey,
                                     platform::Value::Bytes publicKeyData, platform::Value::Bytes privateKeyData)
    : privateKey_(std::move(privateKey)),
      publicKey_(std::move(publicKey)),
      publicKeyData_(std::move(publicKeyData)),
      privateKeyData_(std::move(privateKeyData)) {}

std::shared_ptr<InstanceIDKeyPair> InstanceIDKeyPair::generateRSA2048KeyPairWithPrivateTag(
    const std::string& privateTag, const std::string& publicTag, const InstanceIDEnvironment& env,
    platform::Error* error) {
  platform::Error cryptoError;
  std::optional<platform::RsaKeyPair> key = platform::RsaKeyPair::generate(2048, &cryptoError);
  int32_t status = kKeyGenerationFailedStatus;
  if (key) {
    // A new pair takes the place of whatever the tags held before.
    env.keychain->deleteMatching(queryDictWithTag(privateTag));
    env.keychain->deleteMatching(queryDictWithTag(publicTag));
    status = addKeyItems(keyItem(privateTag, "private", key->privateKeyDer()),
                         keyItem(publicTag, "public", key->publicKeyDer()), *env.keychain);
  } else {
    iidLogError(platform::format("Unable to generate RSA keypair: %@", cryptoError.localizedDescription()));
  }
  if (status != platform::Keychain::statusSuccess) {
    if (error) *error = errorWithInstanceIDErrorCode(status);
    return nullptr;
  }
  return std::make_shared<InstanceIDKeyPair>(key, key->publicKey(),
                                             keyDataWithTag(publicTag, env).value_or(platform::Value::Bytes()),
                                             keyDataWithTag(privateTag, env).value_or(platform::Value::Bytes()));
}

std::shared_ptr<InstanceIDKeyPair> InstanceIDKeyPair::keyPairForPrivateKeyTag(const std::string& privateTag,
                                                                              const std::string& publicTag,
                                                                              const InstanceIDEnvironment& env,
                                                                              platform::Error* error) {
  if (privateTag.empty() || publicTag.empty()) {
    if (error) *error = errorWithInstanceIDErrorCode(InstanceIDErrorCodeInvalidKeyTags);
    return nullptr;
  }
  const std::optional<KeyRef> privateRef = cachedKeyRefWithTag(privateTag, env);
  const std::optional<KeyRef> publicRef = cachedKeyRefWithTag(publicTag, env);
  const auto* privateKey = privateRef ? std::get_if<platform::RsaKeyPair>(&*privateRef) : nullptr;
  const auto* publicKey = publicRef ? std::get_if<platform::RsaPublicKey>(&*publicRef) : nullptr;
  if (!privateKey || !publicKey) {
    if (error) *error = errorWithInstanceIDErrorCode(InstanceIDErrorCodeKeyPairMissing);
    return nullptr;
  }
  return std::make_shared<InstanceIDKeyPair>(*privateKey, *publicKey,
                                             keyDataWithTag(publicTag, env).value_or(platform::Value::Bytes()),
                                             keyDataWithTag(privateTag, env).value_or(platform::Value::Bytes()));
}

platform::KeychainQuery InstanceIDKeyPair::queryDictWithTag(const std::string& tag) {
  platform::KeychainQuery query;
  query.itemClass = platform::KeychainItemClass::Key;
  query.applicationTag = tagBytes(tag);
  query.attributes = {{"keyType", platform::Value("RSA")}};
  return query;
}

std::optional<platform::Value::Bytes> InstanceIDKeyPair::keyDataWithTag(const std::string& tag,
                                                                        const InstanceIDEnvironment& env) {
  std::optional<platform::KeychainItem> item = keyItemWithTag(tag, env);
  if (!item) return std::nullopt;
  return std::move(item->data);
}

std::optional<InstanceIDKeyPair::KeyRef> InstanceIDKeyPair::cachedKeyRefWithTag(const std::string& tag,
                                                                                const InstanceIDEnvironment& env) {
  const std::optional<platform::KeychainItem> item = keyItemWithTag(tag, env);
  if (!item) return std::nullopt;
  platform::Error parseError;
  const platform::Value& keyClass =
      item->attributes.contains("keyClass") ? item->attributes.at("keyClass") : platform::Value();
  if (keyClass == platform::Value("private")) {
    if (auto key = platform::RsaKeyPair::fromPrivateKeyDer(item->data, &parseError)) return KeyRef(*key);
  } else if (auto key = platform::RsaPublicKey::fromPkcs1Der(item->data, &parseError)) {
    return KeyRef(*key);
  }
  iidLogError(platform::format("Unable to read key %@: %@", tag, parseError.localizedDescription()));
  return std::nullopt;
}

bool InstanceIDKeyPair::deleteKeyPairWithPrivateTag(const std::string& privateTag, const std::string& publicTag,
                                                    const InstanceIDEnvironment& env, platform::Error* error) {
  const int32_t privateStatus = env.keychain->deleteMatching(queryDictWithTag(privateTag));
  const int32_t publicStatus = env.keychain->deleteMatching(queryDictWithTag(publicTag));
  const auto gone = [](int32_t status) {
    return status == platform::Keychain::statusSuccess || status == platform::Keychain::statusItemNotFound;
  };
  if (gone(privateStatus) || gone(publicStatus)) return true;
  if (error) *error = errorWithInstanceIDErrorCode(InstanceIDErrorCodeKeyPairMissing);
  iidLogError(platform::format("Error removing keypair status: %d", privateStatus));
  return false;
}

std::optional<std::string> InstanceIDKeyPair::appIdentityWithKeyPair(const InstanceIDKeyPair& keyPair) {
  if (!keyPair.publicKey()) {
    iidLogError("Unable to create a valid asymmetric crypto key");
    return std::nullopt;
  }
  platform::Value::Bytes digest = InstanceIDSHA1(keyPair.publicKeyData());
  digest[0] = static_cast<uint8_t>(0x70 | (digest[0] & 0x0f));
  digest.resize(8);
  return InstanceIDWebSafeBase64(digest);
}

}  // namespace quillet::instanceid
