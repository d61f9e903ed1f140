#pragma once

#include <string>

namespace quillet::http {

// What the app and device tell about themselves, for the default
// "User-Agent" of the request serializer: read from the platform's bundle,
// device and screen by current(); tests pass their own to the serializer.
// A plain value.
struct NKAppInfo {
  std::string executableName = "Quillet";  // the bundle's executable name
  std::string bundleIdentifier;            // used when executableName is empty
  std::string shortVersionString = "1.0";  // "CFBundleShortVersionString"
  std::string bundleVersion;               // used when shortVersionString is empty
  std::string deviceModel = "Phone";
  std::string systemName = "PhoneOS";
  std::string systemVersion = "1.0";
  double screenScale = 2.0;

  // The process's bundle, device and main screen now. Thread-safe.
  static NKAppInfo current();
};

}  // namespace quillet::http
