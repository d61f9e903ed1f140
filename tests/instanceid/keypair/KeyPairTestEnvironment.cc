#include "KeyPairTestEnvironment.h"

#include <cstdlib>
#include <vector>

namespace quillet::instanceid::testing {

const platform::RsaKeyPair& sharedTestKey() {
  static const platform::RsaKeyPair key = [] {
    std::optional<platform::RsaKeyPair> generated = platform::RsaKeyPair::generate(2048);
    if (!generated) std::abort();
    return *generated;
  }();
  return key;
}

KeyPairTestEnvironment::KeyPairTestEnvironment()
    : fileSystem(std::make_shared<platform::FileSystem>(dir.path())),
      keychain(std::make_unique<platform::Keychain>(*fileSystem)),
      clock(std::make_shared<platform::ManualClock>()) {
  auto environment = std::make_shared<InstanceIDEnvironment>();
  environment->fileSystem = fileSystem;
  environment->keychain = keychain.get();
  environment->clock = clock;
  env = environment;
}

void KeyPairTestEnvironment::addKeyItems(const platform::RsaKeyPair& key, const std::string& privateTag,
                                         const std::string& publicTag) {
  for (bool isPrivate : {true, false}) {
    const std::string& tag = isPrivate ? privateTag : publicTag;
    platform::KeychainItem item;
    item.itemClass = platform::KeychainItemClass::Key;
    item.applicationTag.assign(tag.begin(), tag.end());
    item.attributes = {{"keyType", platform::Value("RSA")},
                       {"keyClass", platform::Value(isPrivate ? "private" : "public")},
                       {"isPermanent", platform::Value(true)}};
    item.data = isPrivate ? key.privateKeyDer() : key.publicKeyDer();
    keychain->add(item);
  }
}

size_t KeyPairTestEnvironment::keyItemCount() const {
  platform::KeychainQuery query;
  query.itemClass = platform::KeychainItemClass::Key;
  std::vector<platform::KeychainItem> items;
  keychain->copyMatching(query, platform::Keychain::MatchLimit::All, &items);
  return items.size();
}

}  // namespace quillet::instanceid::testing
