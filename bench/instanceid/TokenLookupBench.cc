// A cached token lookup through the token manager (the path of every token
// request that needs no network): the keychain read of the token, the app
// version test against the defaults and, for the messaging scope, the APNs
// token test against the plist cache. Against the bare keychain read of one
// item, measured in the same run.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "instanceid/store/InstanceIDAuthKeychain.h"
#include "instanceid/store/InstanceIDStore.h"
#include "instanceid/tokens/InstanceIDTokenManager.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/keychain/Keychain.h"

namespace quillet::instanceid {
namespace {

// A throw-away install with one "MSG" token cached after a fetch.
struct TokenLookupInstall {
  TokenLookupInstall() {
    std::string pattern = (std::filesystem::temp_directory_path() / "iid-lookup-bench-XXXXXX").string();
    if (!mkdtemp(pattern.data())) std::abort();
    fileSystem = std::make_shared<platform::FileSystem>(pattern);
    keychain = std::make_unique<platform::Keychain>(*fileSystem);
    defaults = std::make_unique<platform::UserDefaults>(*fileSystem, "bench");
    auto environment = std::make_shared<InstanceIDEnvironment>();
    environment->fileSystem = fileSystem;
    environment->keychain = keychain.get();
    environment->defaults = defaults.get();
    environment->clock = platform::Clock::system();
    environment->bundleIdentifier = "app.bench";
    environment->appVersion = "2.0";
    env = environment;
    store = InstanceIDStore::defaultStore(env, nullptr);
    store->saveToken("cached-token", "sender", "MSG");
    store->saveAPNSToken("p_ab01", false);
    store->saveAppVersion();
    manager = std::make_shared<InstanceIDTokenManager>(store, nullptr, env);
  }
  ~TokenLookupInstall() { std::filesystem::remove_all(fileSystem->root()); }

  std::shared_ptr<platform::FileSystem> fileSystem;
  std::unique_ptr<platform::Keychain> keychain;
  std::unique_ptr<platform::UserDefaults> defaults;
  std::shared_ptr<const InstanceIDEnvironment> env;
  std::shared_ptr<InstanceIDStore> store;
  std::shared_ptr<InstanceIDTokenManager> manager;
};

void BM_KeychainReadBaseline(benchmark::State& state) {
  TokenLookupInstall install;
  platform::KeychainQuery query =
      InstanceIDAuthKeychain::keychainQueryForService("MSG", "sender", "com.stikri.iid-tokens");
  std::vector<platform::KeychainItem> items;
  for (auto _ : state) {
    const int32_t status = install.keychain->copyMatching(query, platform::Keychain::MatchLimit::One, &items);
    if (status != 0) state.SkipWithError("no item");
    benchmark::DoNotOptimize(items);
  }
}
BENCHMARK(BM_KeychainReadBaseline);

void BM_CachedTokenLookup(benchmark::State& state) {
  TokenLookupInstall install;
  const platform::Value::Dictionary options = {{"apns_token", platform::Value("p_ab01")},
                                               {"apns_sandbox", platform::Value(false)}};
  for (auto _ : state) {
    InstanceIDCachedToken cached = install.manager->tokenWithAuthorizedEntity("sender", "MSG", options);
    if (!cached.isValid()) state.SkipWithError("token not served from the cache");
    benchmark::DoNotOptimize(cached);
  }
}
BENCHMARK(BM_CachedTokenLookup);

}  // namespace
}  // namespace quillet::instanceid
