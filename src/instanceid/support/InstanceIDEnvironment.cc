#include "instanceid/support/InstanceIDEnvironment.h"

#include <mutex>

#include "platform/runloop/RunLoop.h"

namespace quillet::instanceid {
namespace {

std::mutex& environmentMutex() {
  static auto* mutex = new std::mutex();
  return *mutex;
}

std::shared_ptr<const InstanceIDEnvironment>& storedEnvironment() {
  // Never destroyed: queues may read it while the process exits.
  static auto* environment = new std::shared_ptr<const InstanceIDEnvironment>();
  return *environment;
}

std::shared_ptr<const InstanceIDEnvironment> makeStandard() {
  auto environment = std::make_shared<InstanceIDEnvironment>();
  environment->fileSystem = platform::FileSystem::standard();
  environment->keychain = &platform::Keychain::standard();
  environment->defaults = &platform::UserDefaults::standardUserDefaults();
  environment->clock = platform::RunLoop::main().clock();
  environment->checkinURL = "https://127.0.0.1:5230/checkin";
  environment->registrationURL = "https://127.0.0.1:5231/iid/register";
  environment->bundleIdentifier = "app.quillet.news";
  environment->appVersion = "1.0";
  environment->systemVersion = "9.3";
  environment->sessionOptions.clock = environment->clock;
  return environment;
}

}  // namespace

std::shared_ptr<const InstanceIDEnvironment> InstanceIDEnvironment::standard() {
  std::lock_guard lock(environmentMutex());
  auto& environment = storedEnvironment();
  if (!environment) environment = makeStandard();
  return environment;
}

void InstanceIDEnvironment::setStandard(std::shared_ptr<const InstanceIDEnvironment> environment) {
  std::lock_guard lock(environmentMutex());
  storedEnvironment() = std::move(environment);
}

}  // namespace quillet::instanceid
