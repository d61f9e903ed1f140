#pragma once

#include <filesystem>
#include <string>

#include "news/api/Webmanager.h"

namespace quillet::news {

// How the phone runs the app: the command-line options of apps/quillet. Plain data.
struct PhoneOptions {
  std::filesystem::path dataDirectory;  // the per-install data root; empty: the default root
  std::string apiBase = Webmanager::kDefaultAPIBase;
  std::string network = "auto";  // auto | wifi | cellular | none
  bool virtualClock = false;     // a ManualClock main loop driven by "wait"
  bool json = false;             // one JSON object per line
  bool log = false;              // also print the process log as "log" events
  double screenWidth = 375;      // the phone's screen in points, and its scale
  double screenHeight = 667;
  double screenScale = 2;
};

}  // namespace quillet::news
