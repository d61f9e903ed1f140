// The phone: runs Quillet headless. It reads one command a line from standard
// input or a script and prints what happens on the phone (docs/driver.md).
#include <CLI/CLI.hpp>

#include <cstdio>
#include <fstream>
#include <iostream>

#include "news/driver/PhoneSession.h"
#include "platform/log/Log.h"

int main(int argc, char** argv) {
  CLI::App app{"Quillet: a news reader for a phone, run headless"};
  quillet::news::PhoneOptions options;
  std::string dataDir;
  app.add_option("--data-dir", dataDir, "Per-install data root (default: $XDG_DATA_HOME/quillet)");
  app.add_option("--api-base", options.apiBase, "Base URL of the news API, ending in /")->capture_default_str();
  app.add_option("--network", options.network, "Network the phone has")
      ->check(CLI::IsMember({"auto", "wifi", "cellular", "none"}))
      ->capture_default_str();
  std::string clock = "real";
  app.add_option("--clock", clock, "real time, or virtual time moved by 'wait'")
      ->check(CLI::IsMember({"real", "virtual"}))
      ->capture_default_str();
  app.add_flag("--json", options.json, "Print one JSON object per line");
  std::string script;
  app.add_option("--script", script, "Read commands from this file instead of standard input");
  app.add_flag("--log", options.log, "Also print the process log as events");
  app.add_option("--log-level", options.logLevel,
                 "With --log (implied): show the subsystems' lines from this level up, past their own filters")
      ->check(CLI::IsMember({"debug", "info", "error"}));
  std::string screen = "375x667";
  app.add_option("--screen", screen, "The phone's screen in points, WIDTHxHEIGHT")->capture_default_str();
  app.add_option("--scale", options.screenScale, "Pixels per point of the screen")
      ->check(CLI::Range(1.0, 4.0))
      ->capture_default_str();
  app.add_option("--checkin-url", options.checkinURL, "Where instance ID checks the device in")->capture_default_str();
  app.add_option("--registration-url", options.registrationURL, "Where instance ID registers for tokens")
      ->capture_default_str();
  app.add_option("--ca-file", options.caFile,
                 "PEM file of the authorities trusted for check-in and registration (default: the system's)");
  app.add_option("--msg-sender-id", options.msgSenderID,
                 "The messaging sender the app asks a token for (default: none configured)");
  app.add_option("--start-time", options.startWallSeconds,
                 "Virtual clock: the wall time it starts at, in seconds since 1970");
  app.add_option("--app-version", options.appVersion, "The app's short version (CFBundleShortVersionString)")
      ->capture_default_str();
  app.add_option("--build-version", options.buildVersion, "The app's build version (CFBundleVersion)")
      ->capture_default_str();
  app.add_option("--os-version", options.osVersion, "The system's version")->capture_default_str();
  app.add_option("--time-zone", options.timeZone, "The device's time zone, an Olson id (default: $TZ, else UTC)");
  app.add_option("--languages", options.languages, "The preferred languages, comma separated (default: $LANGUAGE)")
      ->delimiter(',');
  app.add_option("--app-arg", options.appArguments,
                 "One argument of the app's process (repeatable; --app-arg=-MTRDebugEnabled)")
      ->expected(1);
  bool version = false;
  app.add_flag("--version", version, "Print the version and exit");
  CLI11_PARSE(app, argc, argv);
  if (!options.logLevel.empty()) options.log = true;

  if (version) {
    std::cout << "quillet 0.1.0\n";
    return 0;
  }
  if (std::sscanf(screen.c_str(), "%lfx%lf", &options.screenWidth, &options.screenHeight) != 2 ||
      !(options.screenWidth > 0) || !(options.screenHeight > 0)) {
    std::cerr << "quillet: --screen needs WIDTHxHEIGHT in points, such as 375x667\n";
    return 2;
  }
  options.dataDirectory = dataDir;
  options.virtualClock = clock == "virtual";
  if (options.log) quillet::platform::Log::setStandardErrorEnabled(false);

  std::ifstream file;
  if (!script.empty()) {
    file.open(script);
    if (!file) {
      std::cerr << "quillet: cannot read the script " << script << "\n";
      return 2;
    }
  }
  quillet::news::PhoneSession session(options, std::cout);
  return session.run(script.empty() ? std::cin : file);
}
