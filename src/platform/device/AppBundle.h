#pragma once

#include <string>
#include <vector>

namespace quillet::platform {

// What the app's main bundle says of itself ("CFBundleExecutable",
// "CFBundleIdentifier", "CFBundleShortVersionString", "CFBundleVersion" and
// the URL schemes it registers). The process has one, set by the driver
// before launch (a later launch of one install may carry a new version).
// A plain value; main() and setMain() are thread-safe.
struct AppBundle {
  std::string executableName = "Quillet";
  std::string bundleIdentifier = "app.quillet.news";
  std::string shortVersionString = "1.0";
  std::string bundleVersion = "1";
  std::vector<std::string> urlSchemes;

  static AppBundle main();
  static void setMain(AppBundle bundle);
};

}  // namespace quillet::platform
