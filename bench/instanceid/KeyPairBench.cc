// The key pair's costs: making and storing an RSA-2048 pair (against bare key
// generation), signing a 300-byte text (against the two raw private-key
// operations it is made of) and deriving the app identity (against the bare
// SHA-1 of the public key), each baseline measured in the same run.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "instanceid/keypair/InstanceIDKeyPair.h"
#include "instanceid/keypair/InstanceIDKeyPairStore.h"
#include "instanceid/keypair/InstanceIDKeyPairUtilities.h"
#include "platform/crypto/Digest.h"
#include "platform/keychain/Keychain.h"

namespace quillet::instanceid {
namespace {

// A throw-away install under the temporary directory (left for the system to clean).
struct BenchInstall {
  BenchInstall() {
    std::string pattern = (std::filesystem::temp_directory_path() / "iid-bench-XXXXXX").string();
    if (!mkdtemp(pattern.data())) std::abort();
    fileSystem = std::make_shared<platform::FileSystem>(pattern);
    keychain = std::make_unique<platform::Keychain>(*fileSystem);
    auto environment = std::make_shared<InstanceIDEnvironment>();
    environment->fileSystem = fileSystem;
    environment->keychain = keychain.get();
    environment->clock = platform::Clock::system();
    env = environment;
  }
  ~BenchInstall() { std::filesystem::remove_all(fileSystem->root()); }

  std::shared_ptr<platform::FileSystem> fileSystem;
  std::unique_ptr<platform::Keychain> keychain;
  std::shared_ptr<const InstanceIDEnvironment> env;
};

const platform::RsaKeyPair& key() {
  static const platform::RsaKeyPair pair = *platform::RsaKeyPair::generate(2048);
  return pair;
}

std::string text300() {
  std::string text = "com.example.reader\n";
  while (text.size() < 300) text += "MIIBCgKCAQEAtext";
  text.resize(300);
  return text;
}

void BM_RsaGenerateBaseline(benchmark::State& state) {
  for (auto _ : state) {
    auto pair = platform::RsaKeyPair::generate(2048);
    if (!pair) state.SkipWithError("generation failed");
    benchmark::DoNotOptimize(pair);
  }
}
BENCHMARK(BM_RsaGenerateBaseline)->Unit(benchmark::kMillisecond)->Iterations(4)->Repetitions(5);

void BM_GenerateAndSaveKeyPair(benchmark::State& state) {
  BenchInstall install;
  InstanceIDKeyPairStore store(install.env);
  for (auto _ : state) {
    auto pair = store.generateAndSaveKeyWithSubtype("", 1'800'000'000, nullptr);
    if (!pair) state.SkipWithError("generation failed");
    benchmark::DoNotOptimize(pair);
  }
}
BENCHMARK(BM_GenerateAndSaveKeyPair)->Unit(benchmark::kMillisecond)->Iterations(4)->Repetitions(5);

void BM_RawPrivateOperationsBaseline(benchmark::State& state) {
  const std::string text = text300();
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  for (auto _ : state) {
    auto first = key().rawPrivateOperation(std::span(bytes, 256));
    auto second = key().rawPrivateOperation(std::span(bytes + 256, text.size() - 256));
    benchmark::DoNotOptimize(first);
    benchmark::DoNotOptimize(second);
  }
}
BENCHMARK(BM_RawPrivateOperationsBaseline)->Unit(benchmark::kMicrosecond);

void BM_SignParams300(benchmark::State& state) {
  const std::string text = text300();
  for (auto _ : state) {
    auto signature = InstanceIDSignParams(key(), text);
    if (!signature) state.SkipWithError("signing failed");
    benchmark::DoNotOptimize(signature);
  }
}
BENCHMARK(BM_SignParams300)->Unit(benchmark::kMicrosecond);

void BM_Sha1OfPublicKeyBaseline(benchmark::State& state) {
  const std::vector<uint8_t> der = key().publicKeyDer();
  for (auto _ : state) {
    auto digest = platform::Digest::sha1(std::span<const uint8_t>(der));
    benchmark::DoNotOptimize(digest);
  }
}
BENCHMARK(BM_Sha1OfPublicKeyBaseline);

void BM_AppIdentity(benchmark::State& state) {
  const InstanceIDKeyPair pair(key(), key().publicKey(), key().publicKeyDer(), key().privateKeyDer());
  for (auto _ : state) {
    auto identity = InstanceIDKeyPair::appIdentityWithKeyPair(pair);
    benchmark::DoNotOptimize(identity);
  }
}
BENCHMARK(BM_AppIdentity);

}  // namespace
}  // namespace quillet::instanceid
