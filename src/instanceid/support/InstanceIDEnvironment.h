#pragma once

#include <memory>
#include <string>

#include "platform/clock/Clock.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/files/FileSystem.h"
#include "platform/keychain/Keychain.h"
#include "platform/net/HttpSessionOptions.h"

namespace quillet::instanceid {

// What the subsystem is built on: the install's directories, secret store
// and defaults, the clock, the two endpoints and how to reach them, and what
// the app tells about itself. Classes take it at creation (tests build their
// own); the process-wide one is set by the app before the facade starts.
// Immutable once shared; the stores it points to outlive every user.
struct InstanceIDEnvironment {
  std::shared_ptr<const platform::FileSystem> fileSystem;  // Documents holds the plists
  platform::Keychain* keychain = nullptr;                  // not owned
  platform::UserDefaults* defaults = nullptr;              // not owned
  std::shared_ptr<platform::Clock> clock;                  // wall time of every record and test
  std::string checkinURL;                                  // POST target of device check-in
  std::string registrationURL;                             // POST target of token requests
  platform::HttpSessionOptions sessionOptions;             // trust anchors and clock of the requests
  std::string bundleIdentifier;                            // the main bundle's identifier
  std::string appVersion;                                  // "CFBundleShortVersionString"; "" when none
  std::string systemVersion;                               // the system's version text

  // Milliseconds and whole seconds since 1970 on `clock`.
  int64_t nowMillis() const { return static_cast<int64_t>(clock->wallSeconds() * 1000.0); }
  int64_t nowSeconds() const { return static_cast<int64_t>(clock->wallSeconds()); }

  // The process-wide environment: until set, one over the standard file
  // system, keychain and defaults, the main run loop's clock and the
  // stand-in servers' default addresses.
  static std::shared_ptr<const InstanceIDEnvironment> standard();
  static void setStandard(std::shared_ptr<const InstanceIDEnvironment> environment);
};

}  // namespace quillet::instanceid
