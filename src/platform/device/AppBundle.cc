#include "platform/device/AppBundle.h"

#include <mutex>

namespace quillet::platform {
namespace {

std::mutex bundleMutex;
AppBundle mainBundle;

}  // namespace

AppBundle AppBundle::main() {
  std::lock_guard lock(bundleMutex);
  return mainBundle;
}

void AppBundle::setMain(AppBundle bundle) {
  std::lock_guard lock(bundleMutex);
  mainBundle = std::move(bundle);
}

}  // namespace quillet::platform
