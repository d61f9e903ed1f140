#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "backend/checkin/CheckinDeviceRegistry.h"
#include "platform/clock/Clock.h"

namespace quillet::backend {

// How a RegistrationServer is set up.
struct RegistrationServerOptions {
  std::string host = "127.0.0.1";
  int port = 0;                                    // 0: an ephemeral port, see RegistrationServer::port()
  std::filesystem::path certificateFile;           // the backend's server certificate (PEM)
  std::filesystem::path keyFile;                   // its private key (PEM)
  std::shared_ptr<CheckinDeviceRegistry> devices;  // the check-in server's; null: an empty one of its own
  std::shared_ptr<platform::Clock> clock;          // times of the record; null: the system clock
};

}  // namespace quillet::backend
