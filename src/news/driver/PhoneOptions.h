#pragma once

#include <filesystem>
#include <string>
#include <vector>

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
  std::string logLevel;          // with log: "debug", "info" or "error" ("" = each subsystem's own filter)
  double screenWidth = 375;      // the phone's screen in points, and its scale
  double screenHeight = 667;
  double screenScale = 2;
  double startWallSeconds = 0;  // virtual clock: the wall time it starts at (0: the clock's default)
  // Instance ID: where check-in and token registration answer, the PEM file
  // of the authorities to trust for them ("" = the system's store), and the
  // messaging sender the shell asks tokens for ("" = none configured).
  std::string checkinURL = "https://127.0.0.1:5230/checkin";
  std::string registrationURL = "https://127.0.0.1:5231/iid/register";
  std::string caFile;
  std::string msgSenderID;
  // The app and the device as the phone reports them, so that a test can
  // upgrade the app between two launches of one install: the bundle's short
  // and build versions, the system's version, the time zone (an Olson id;
  // "" = the environment's), the preferred languages (empty = the
  // environment's) and the process arguments.
  std::string appVersion = "1.0";
  std::string buildVersion = "1";
  std::string osVersion = "1.0";
  std::string timeZone;
  std::vector<std::string> languages;
  std::vector<std::string> appArguments;
};

}  // namespace quillet::news
