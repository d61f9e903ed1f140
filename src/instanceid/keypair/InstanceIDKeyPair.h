#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "instanceid/support/InstanceIDEnvironment.h"
#include "platform/crypto/RsaKeyPair.h"
#include "platform/crypto/RsaPublicKey.h"
#include "platform/keychain/KeychainQuery.h"
#include "platform/value/Error.h"
#include "platform/value/Value.h"

namespace quillet::instanceid {

// The instance's RSA key pair: the two keys and their exported bytes as the
// keychain holds them (public: PKCS#1 RSAPublicKey DER, private: PKCS#1
// RSAPrivateKey DER). Immutable; shared as std::shared_ptr; safe from any thread.
//
// The class operations work on the key items of `env.keychain` (class Key,
// "keyType" "RSA", the tag's UTF-8 bytes as application tag) and may be
// called from any thread.
class InstanceIDKeyPair {
 public:
  // What a key item reads back as: the private item gives the whole pair,
  // the public item its public key.
  using KeyRef = std::variant<platform::RsaKeyPair, platform::RsaPublicKey>;

  InstanceIDKeyPair(std::optional<platform::RsaKeyPair> privateKey, std::optional<platform::RsaPublicKey> publicKey,
                    platform::Value::Bytes publicKeyData, platform::Value::Bytes privateKeyData);

  // Both keys are present.
  bool isValid() const { return privateKey_.has_value() && publicKey_.has_value(); }
  const std::optional<platform::RsaKeyPair>& privateKey() const { return privateKey_; }
  const std::optional<platform::RsaPublicKey>& publicKey() const { return publicKey_; }
  const platform::Value::Bytes& publicKeyData() const { return publicKeyData_; }
  const platform::Value::Bytes& privateKeyData() const { return privateKeyData_; }

  // A new RSA-2048 pair stored as two permanent key items (items left under
  // the same tags are replaced). Slow: call it off the main queue. nullptr
  // with an error of domain "com.stikri.iid" whose code is the keychain
  // status (-1 when no key could be made).
  static std::shared_ptr<InstanceIDKeyPair> generateRSA2048KeyPairWithPrivateTag(const std::string& privateTag,
                                                                                 const std::string& publicTag,
                                                                                 const InstanceIDEnvironment& env,
                                                                                 platform::Error* error);
  // The pair stored under the tags: error 2002 for an empty tag, 2001 when an
  // item is missing or unreadable.
  static std::shared_ptr<InstanceIDKeyPair> keyPairForPrivateKeyTag(const std::string& privateTag,
                                                                    const std::string& publicTag,
                                                                    const InstanceIDEnvironment& env,
                                                                    platform::Error* error);
  // Selects the RSA key item of `tag`.
  static platform::KeychainQuery queryDictWithTag(const std::string& tag);
  // The item's bytes; nullopt for an empty tag or no item.
  static std::optional<platform::Value::Bytes> keyDataWithTag(const std::string& tag, const InstanceIDEnvironment& env);
  // The item's key; nullopt for an empty tag, no item, or bytes that do not
  // read as a key (logged).
  static std::optional<KeyRef> cachedKeyRefWithTag(const std::string& tag, const InstanceIDEnvironment& env);
  // Deletes both items. True when either deletion succeeded or found nothing;
  // otherwise error 2001.
  static bool deleteKeyPairWithPrivateTag(const std::string& privateTag, const std::string& publicTag,
                                          const InstanceIDEnvironment& env, platform::Error* error);
  // The 11-character public name of the pair; nullopt without a public key.
  static std::optional<std::string> appIdentityWithKeyPair(const InstanceIDKeyPair& keyPair);

 private:
  std::optional<platform::RsaKeyPair> privateKey_;
  std::optional<platform::RsaPublicKey> publicKey_;
  platform::Value::Bytes publicKeyData_;
  platform::Value::Bytes privateKeyData_;
};

}  // namespace quillet::instanceid
