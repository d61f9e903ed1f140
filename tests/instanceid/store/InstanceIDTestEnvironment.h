#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "instanceid/support/InstanceIDEnvironment.h"
#include "instanceid/support/InstanceIDLogger.h"
#include "platform/clock/Clock.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/files/FileSystem.h"
#include "platform/keychain/Keychain.h"
#include "support/TempDir.h"

namespace quillet::instanceid::testing {

// A fresh install on a temporary data root: its own file system, keychain,
// defaults and manual clock. `reinstall()` deletes the app's data but keeps
// the keychain, as deleting and installing the app again does.
struct TestInstall {
  quillet::testing::TempDir dir;
  std::shared_ptr<platform::FileSystem> fileSystem = std::make_shared<platform::FileSystem>(dir.path());
  std::unique_ptr<platform::Keychain> keychain = std::make_unique<platform::Keychain>(*fileSystem);
  std::unique_ptr<platform::UserDefaults> defaults = std::make_unique<platform::UserDefaults>(*fileSystem, "test");
  std::shared_ptr<platform::ManualClock> clock = std::make_shared<platform::ManualClock>();
  std::shared_ptr<InstanceIDEnvironment> env = makeEnvironment();

  std::shared_ptr<InstanceIDEnvironment> makeEnvironment() {
    auto environment = std::make_shared<InstanceIDEnvironment>();
    environment->fileSystem = fileSystem;
    environment->keychain = keychain.get();
    environment->defaults = defaults.get();
    environment->clock = clock;
    environment->checkinURL = "https://127.0.0.1:1/checkin";
    environment->appVersion = "2.0";
    environment->systemVersion = "9.3";
    return environment;
  }

  void reinstall() {
    fileSystem->removeInstallData();
    defaults = std::make_unique<platform::UserDefaults>(*fileSystem, "test");
    env->defaults = defaults.get();
  }

  size_t keychainCount() const {
    std::vector<platform::KeychainItem> items;
    keychain->copyMatching({}, platform::Keychain::MatchLimit::All, &items);
    return items.size();
  }
};

// Collects every subsystem log line (all levels) while it lives.
class IIDLogLines final : public InstanceIDLogWriter, public InstanceIDLogFilter {
 public:
  static std::shared_ptr<IIDLogLines> install() {
    auto lines = std::make_shared<IIDLogLines>();
    InstanceIDLogger::shared().setWriter(lines);
    InstanceIDLogger::shared().setFilter(lines);
    return lines;
  }
  ~IIDLogLines() override = default;
  void logMessage(const std::string& message, InstanceIDLogLevel) override {
    std::lock_guard lock(mutex_);
    lines_.push_back(message);
  }
  bool filterAllowsMessage(const std::string&, InstanceIDLogLevel) const override { return true; }
  bool contains(const std::string& fragment) const {
    std::lock_guard lock(mutex_);
    for (const auto& line : lines_) {
      if (line.find(fragment) != std::string::npos) return true;
    }
    return false;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

}  // namespace quillet::instanceid::testing
