#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backend/checkin/CheckinDeviceRegistry.h"
#include "platform/clock/Clock.h"

namespace quillet::backend {

// How a CheckinServer is set up.
struct CheckinServerOptions {
  std::string host = "127.0.0.1";
  int port = 0;                                                 // 0: an ephemeral port, see CheckinServer::port()
  std::filesystem::path certificateFile;                        // the backend's server certificate (PEM)
  std::filesystem::path keyFile;                                // its private key (PEM)
  std::shared_ptr<CheckinDeviceRegistry> devices;               // shared with the other servers; null: one of its own
  std::shared_ptr<platform::Clock> clock;                       // "time_msec" and the record; null: the system clock
  std::vector<std::pair<std::string, std::string>> settings;    // answered as "setting"
  std::string versionInfo = "quillet-backend-1";                // answered as "version_info"
  std::string deviceDataVersionInfo = "quillet-device-data-1";  // answered as "device_data_version_info"
  std::optional<uint64_t> nextDeviceId;                         // the id of the next device issued (once); else random
};

}  // namespace quillet::backend
