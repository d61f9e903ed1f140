#pragma once

#include <memory>

#include "instanceid/support/InstanceIDEnvironment.h"
#include "platform/clock/Clock.h"
#include "platform/crypto/RsaKeyPair.h"
#include "platform/keychain/Keychain.h"
#include "support/TempDir.h"

namespace quillet::instanceid::testing {

// One RSA-2048 key for the whole test program: generation is slow under the sanitizers.
const platform::RsaKeyPair& sharedTestKey();

// A fresh install: its own data root, keychain and clock.
struct KeyPairTestEnvironment {
  KeyPairTestEnvironment();

  // Stores `key` under the tags as generation would, without a creation time.
  void addKeyItems(const platform::RsaKeyPair& key, const std::string& privateTag, const std::string& publicTag);
  // Number of key items in the keychain.
  size_t keyItemCount() const;

  quillet::testing::TempDir dir;
  std::shared_ptr<platform::FileSystem> fileSystem;
  std::unique_ptr<platform::Keychain> keychain;
  std::shared_ptr<platform::ManualClock> clock;
  std::shared_ptr<const InstanceIDEnvironment> env;
};

}  // namespace quillet::instanceid::testing
