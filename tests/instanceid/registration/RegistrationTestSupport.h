#pragma once

// A test install for the registration, token and facade tests: a temporary
// data root (keychain, defaults, Documents), a manual-clock main loop, and a
// replacement registration transport that records each request and answers
// with what the test queued. One RSA pair is made per program and copied in.
#include <atomic>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "instanceid/checkin/InstanceIDAuthService.h"
#include "instanceid/keypair/InstanceIDKeyPair.h"
#include "instanceid/registration/InstanceIDRegistrationClient.h"
#include "instanceid/store/InstanceIDCheckinPreferences.h"
#include "instanceid/store/InstanceIDStore.h"
#include "instanceid/support/InstanceIDEnvironment.h"
#include "instanceid/support/InstanceIDError.h"
#include "platform/crypto/RsaKeyPair.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/files/FileSystem.h"
#include "platform/keychain/Keychain.h"
#include "platform/runloop/RunLoop.h"
#include "support/TempDir.h"

namespace quillet::instanceid::testing {

// One canned answer of the registration server.
struct CannedReply {
  std::string body;
  platform::HttpHeaders headers;
  std::optional<platform::Error> error;
  bool hold = false;  // keep the request unanswered until answerHeld()
};

class RegistrationInstall {
 public:
  RegistrationInstall() : RegistrationInstall(std::nullopt) {}
  // `template_` (optional): a data root copied in first (an install that already has keys).
  explicit RegistrationInstall(const std::optional<std::filesystem::path>& templateRoot)
      : clock_(std::make_shared<platform::ManualClock>()), loop_(std::make_shared<platform::RunLoop>(clock_)) {
    if (templateRoot) {
      std::filesystem::copy(
          *templateRoot, dir_.path(),
          std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing);
    }
    clock_->setWallSeconds(1500000000.0);
    fileSystem_ = std::make_shared<platform::FileSystem>(dir_.path());
    keychain_ = std::make_unique<platform::Keychain>(*fileSystem_);
    defaults_ = std::make_unique<platform::UserDefaults>(*fileSystem_, "test");
    auto env = std::make_shared<InstanceIDEnvironment>();
    env->fileSystem = fileSystem_;
    env->keychain = keychain_.get();
    env->defaults = defaults_.get();
    env->clock = clock_;
    env->checkinURL = "https://127.0.0.1:9/checkin";
    env->registrationURL = "https://127.0.0.1:9/iid/register";
    env->bundleIdentifier = "app.test";
    env->appVersion = "2.0";
    env->systemVersion = "9.3";
    env->sessionOptions.clock = clock_;
    env_ = env;
    platform::RunLoop::setMain(loop_);
    InstanceIDRegistrationClient::resetPhoneRegistrationRetryCount();
    InstanceIDRegistrationClient::setRegistrationTestBlock(
        [this](const platform::HttpRequest& request, InstanceIDRegistrationClient::RegistrationTestCompletion done) {
          std::unique_lock lock(mutex_);
          requests_.push_back(request);
          CannedReply reply =
              replies_.empty() ? CannedReply{"Error=NO_REPLY_QUEUED", {}, std::nullopt, false} : replies_.front();
          if (!replies_.empty() && !sticky_) replies_.pop_front();
          if (reply.hold) {
            held_.push_back(std::move(done));
            return;
          }
          lock.unlock();
          done(200, reply.headers, reply.body, reply.error);
        });
  }
  ~RegistrationInstall() {
    InstanceIDRegistrationClient::setRegistrationTestBlock(nullptr);
    loop_->runPending();
    platform::RunLoop::setMain(nullptr);
  }

  const std::shared_ptr<const InstanceIDEnvironment>& env() const { return env_; }
  const std::shared_ptr<platform::RunLoop>& loop() const { return loop_; }
  const std::shared_ptr<platform::ManualClock>& clock() const { return clock_; }
  const std::filesystem::path& root() const { return dir_.path(); }

  // Answers in order; with `sticky` the last queued answer repeats forever.
  void reply(std::string body, platform::HttpHeaders headers = {}) {
    std::lock_guard lock(mutex_);
    replies_.push_back(CannedReply{std::move(body), std::move(headers), std::nullopt, false});
  }
  void replyError(platform::Error error) {
    std::lock_guard lock(mutex_);
    replies_.push_back(CannedReply{"", {}, std::move(error), false});
  }
  void holdNext() {
    std::lock_guard lock(mutex_);
    replies_.push_back(CannedReply{"", {}, std::nullopt, true});
  }
  void setSticky(bool sticky) { sticky_ = sticky; }
  void answerHeld(const std::string& body) {
    std::vector<InstanceIDRegistrationClient::RegistrationTestCompletion> held;
    {
      std::lock_guard lock(mutex_);
      held.swap(held_);
    }
    for (auto& done : held) done(200, {}, body, std::nullopt);
  }
  std::vector<platform::HttpRequest> requests() const {
    std::lock_guard lock(mutex_);
    return requests_;
  }
  static std::string body(const platform::HttpRequest& request) {
    return std::string(request.body.begin(), request.body.end());
  }
  // The "X-kid" of a request body.
  static uint64_t requestID(const platform::HttpRequest& request) {
    const std::string text = body(request);
    const size_t at = text.find("X-kid=");
    return at == std::string::npos ? 0 : std::stoull(text.substr(at + 6));
  }

  // A store holding a credential checked in `ageMillis` ago.
  std::shared_ptr<InstanceIDStore> storeWithCheckin(int64_t ageMillis = 0) {
    auto store = InstanceIDStore::defaultStore(env_, [](const std::string&, const std::string&) {});
    InstanceIDCheckinPreferences preferences("4000000000000000001", "5000");
    preferences.updateWithCheckinPlistContents({{"IIDVersionInfo", platform::Value("vinfo")}});
    preferences.setLastCheckinTimestampMillis(env_->nowMillis() - ageMillis);
    store->saveCheckinPreferences(preferences, nullptr);
    return store;
  }

  bool runUntil(const std::function<bool()>& predicate) { return loop_->runUntil(predicate, 10.0); }

  // The program's one RSA pair (generation is slow under the sanitizers).
  static std::shared_ptr<InstanceIDKeyPair> sharedKeyPair() {
    static auto* keyPair = [] {
      auto rsa = platform::RsaKeyPair::generate();
      return new std::shared_ptr<InstanceIDKeyPair>(
          std::make_shared<InstanceIDKeyPair>(*rsa, rsa->publicKey(), rsa->publicKeyDer(), rsa->privateKeyDer()));
    }();
    return *keyPair;
  }

 private:
  quillet::testing::TempDir dir_;
  std::shared_ptr<platform::ManualClock> clock_;
  std::shared_ptr<platform::RunLoop> loop_;
  std::shared_ptr<platform::FileSystem> fileSystem_;
  std::unique_ptr<platform::Keychain> keychain_;
  std::unique_ptr<platform::UserDefaults> defaults_;
  std::shared_ptr<const InstanceIDEnvironment> env_;
  mutable std::mutex mutex_;
  std::vector<platform::HttpRequest> requests_;
  std::deque<CannedReply> replies_;
  std::vector<InstanceIDRegistrationClient::RegistrationTestCompletion> held_;
  std::atomic<bool> sticky_{false};
};

// What a handler was called with, from any thread.
struct TokenResult {
  std::mutex mutex;
  int calls = 0;
  std::optional<std::string> token;
  std::optional<platform::Error> error;

  InstanceIDTokenHandler handler() {
    return [this](const std::optional<std::string>& t, const std::optional<platform::Error>& e) {
      {
        std::lock_guard lock(mutex);
        ++calls;
        token = t;
        error = e;
      }
      wakeMainLoop();
    };
  }
  InstanceIDDeleteHandler deleteHandler() {
    return [this](const std::optional<platform::Error>& e) {
      {
        std::lock_guard lock(mutex);
        ++calls;
        error = e;
      }
      wakeMainLoop();
    };
  }
  // Error answers come on a session queue: let a waiting main loop look again.
  static void wakeMainLoop() {
    platform::RunLoop::main().post([] {});
  }
  int callCount() {
    std::lock_guard lock(mutex);
    return calls;
  }
  int64_t errorCode() {
    std::lock_guard lock(mutex);
    return error ? error->code : -1;
  }
};

}  // namespace quillet::instanceid::testing
