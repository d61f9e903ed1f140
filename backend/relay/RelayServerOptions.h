#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "backend/checkin/CheckinDeviceRegistry.h"
#include "platform/clock/Clock.h"

namespace quillet::backend {

// How a RelayServer is set up.
struct RelayServerOptions {
  std::string host = "127.0.0.1";
  int port = 0;                                    // 0: an ephemeral port, see RelayServer::port()
  int adminPort = 0;                               // the admin HTTP interface; 0: ephemeral; -1: none
  std::filesystem::path certificateFile;           // the server's certificate chain (PEM)
  std::filesystem::path keyFile;                   // its private key (PEM)
  std::filesystem::path dataDirectory;             // holds "relay.sqlite"; empty: kept in memory
  std::map<std::string, std::string> credentials;  // device id -> secret accepted at login
  std::shared_ptr<CheckinDeviceRegistry> devices;  // checked-in devices, also accepted at login; may be null
  double heartbeatIntervalSeconds = 0;             // server pings on a connection; 0: none
  std::shared_ptr<platform::Clock> clock;          // server timestamps; null: the system clock
};

}  // namespace quillet::backend
