#include "instanceid/support/InstanceIDEnvironment.h"

#include "platform/runloop/RunLoop.h"
#include "platform/support/SharedSlot.h"

namespace quillet::instanceid {
namespace {

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
  return platform::SharedSlot<const InstanceIDEnvironment>::get(makeStandard);
}

void InstanceIDEnvironment::setStandard(std::shared_ptr<const InstanceIDEnvironment> environment) {
  platform::SharedSlot<const InstanceIDEnvironment>::set(std::move(environment));
}

}  // namespace quillet::instanceid
