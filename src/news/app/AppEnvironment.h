#pragma once

#include <memory>

#include "platform/defaults/UserDefaults.h"
#include "platform/files/FileSystem.h"
#include "platform/runloop/RunLoop.h"

namespace quillet::news {

// What the app's screens are made with: the defaults store, the main run
// loop and the file system of the data root. The defaults store and the run
// loop are owned by whoever runs the app and outlive every screen.
struct AppEnvironment {
  platform::UserDefaults* defaults = nullptr;
  platform::RunLoop* runLoop = nullptr;
  std::shared_ptr<const platform::FileSystem> fileSystem;
};

}  // namespace quillet::news
