// Feeds arbitrary bytes to the device check-in's readers: as the answer
// body of a check-in (through the replacement transport), as the keychain
// text of the credential, and as the contents of "g-checkin.plist" read at
// a store's creation. None of them may crash; a check-in either succeeds
// with a device ID or reports an error.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <string>

#include "instanceid/checkin/InstanceIDCheckinService.h"
#include "instanceid/store/InstanceIDStore.h"
#include "platform/files/AtomicFile.h"
#include "platform/log/Log.h"

using namespace quillet;
using instanceid::InstanceIDCheckinPreferences;
using instanceid::InstanceIDCheckinService;

namespace {

struct Install {
  std::shared_ptr<platform::FileSystem> fileSystem;
  std::unique_ptr<platform::Keychain> keychain;
  std::unique_ptr<platform::UserDefaults> defaults;
  std::shared_ptr<instanceid::InstanceIDEnvironment> env;
  std::shared_ptr<instanceid::InstanceIDStore> store;
  std::shared_ptr<InstanceIDCheckinService> service;
};

Install& install() {
  // Never destroyed: the service's queue may still run at exit.
  static Install* shared = [] {
    platform::Log::setStandardErrorEnabled(false);
    // In memory when the machine has it: each input writes files, and a disk sync each would set the pace.
    char pattern[] = "/dev/shm/iid-checkin-fuzz-XXXXXX";
    char fallback[] = "/tmp/iid-checkin-fuzz-XXXXXX";
    auto* made = new Install();
    const char* root = mkdtemp(pattern);
    made->fileSystem = std::make_shared<platform::FileSystem>(root != nullptr ? root : mkdtemp(fallback));
    made->keychain = std::make_unique<platform::Keychain>(*made->fileSystem);
    made->defaults = std::make_unique<platform::UserDefaults>(*made->fileSystem, "fuzz");
    made->env = std::make_shared<instanceid::InstanceIDEnvironment>();
    made->env->fileSystem = made->fileSystem;
    made->env->keychain = made->keychain.get();
    made->env->defaults = made->defaults.get();
    made->env->clock = std::make_shared<platform::ManualClock>();
    made->store = instanceid::InstanceIDStore::defaultStore(made->env, nullptr);
    made->service = std::make_shared<InstanceIDCheckinService>(
        std::weak_ptr<instanceid::InstanceIDCheckinCache>(made->store), made->env);
    return made;
  }();
  return *shared;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  Install& state = install();

  InstanceIDCheckinService::setCheckinTestBlock(
      [&bytes](const platform::HttpRequest&, InstanceIDCheckinService::CheckinTestResponder respond) {
        respond(200, bytes, std::nullopt);
      });
  std::promise<void> done;
  state.service->checkinWithCompletion([&done](auto preferences, auto error) {
    if (preferences ? preferences->deviceID().empty() : !error) std::abort();
    done.set_value();
  });
  done.get_future().wait();

  if (auto parsed = InstanceIDCheckinPreferences::preferencesFromKeychainContents(bytes)) {
    if (parsed->checkinKeychainContent() != bytes) std::abort();
  }

  const auto path = instanceid::InstanceIDBackupExcludedPlist::pathWithName("g-checkin", *state.fileSystem);
  if (platform::AtomicFile::write(path, bytes)) {
    instanceid::InstanceIDCheckinStore store("g-checkin", state.env);
    store.cachedCheckinPreferences();
  }
  return 0;
}
