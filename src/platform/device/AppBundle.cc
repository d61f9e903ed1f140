#include "platform/device/AppBundle.h"

#include "platform/support/SharedSlot.h"

namespace quillet::platform {
namespace {

SharedValue<AppBundle> mainBundle;

}  // namespace

AppBundle AppBundle::main() { return mainBundle.get(); }

void AppBundle::setMain(AppBundle bundle) { mainBundle.set(std::move(bundle)); }

}  // namespace quillet::platform
