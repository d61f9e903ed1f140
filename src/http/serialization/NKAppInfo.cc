#include "http/serialization/NKAppInfo.h"

#include "platform/device/AppBundle.h"
#include "platform/device/DeviceInfo.h"
#include "platform/ui/Screen.h"

namespace quillet::http {

NKAppInfo NKAppInfo::current() {
  const platform::AppBundle bundle = platform::AppBundle::main();
  const platform::DeviceInfo device = platform::DeviceInfo::current();
  NKAppInfo info;
  info.executableName = bundle.executableName;
  info.bundleIdentifier = bundle.bundleIdentifier;
  info.shortVersionString = bundle.shortVersionString;
  info.bundleVersion = bundle.bundleVersion;
  info.deviceModel = device.model;
  info.systemName = device.systemName;
  info.systemVersion = device.systemVersion;
  info.screenScale = platform::Screen::main().scale;
  return info;
}

}  // namespace quillet::http
