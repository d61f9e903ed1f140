#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backend/authority/BackendRequestLog.h"
#include "backend/checkin/CheckinDeviceRegistry.h"
#include "backend/checkin/CheckinFault.h"
#include "backend/checkin/CheckinServerOptions.h"
#include "platform/value/Error.h"

namespace quillet::backend {

// The stand-in check-in service, over HTTPS:
//   POST /checkin   the client's JSON check-in (see CheckinRequest); anything
//                   else is answered 400 with a one-line reason. A first
//                   check-in (id 0) issues a device; a known id with its
//                   secret keeps that device; any other pair issues a new one.
//                   Answer: {"android_id", "security_token", "time_msec",
//                   "device_data_version_info", "digest", "version_info",
//                   "setting": [{"name", "value"}, ...]}.
//   GET  /_admin/requests   every request received, as JSON
//   POST /_admin/faults     {"fault": "<name>", "on": true} (names as
//                           checkinFaultNamed), {"device_id": 123}: every
//                           answer names that device (0: off),
//                           or {"clear": true}
// Runs on its own threads between start() and stop(); the public functions
// may be called from any thread. The destructor stops it.
class CheckinServer {
 public:
  explicit CheckinServer(CheckinServerOptions options);
  ~CheckinServer();
  CheckinServer(const CheckinServer&) = delete;
  CheckinServer& operator=(const CheckinServer&) = delete;

  bool start(platform::Error* error = nullptr);
  void stop();

  int port() const;         // 0 before start
  std::string url() const;  // "https://<host>:<port>/checkin"

  void setFault(CheckinFault fault, bool on = true);
  // Every answer names this device (issued on first use with a new secret); nullopt: off.
  void setFixedDeviceId(std::optional<uint64_t> id);
  // The next device issued gets this id (once).
  void setNextDeviceId(uint64_t id);
  // Switches every fault off, the fixed id included.
  void clearFaults();

  std::vector<BackendRequest> requests() const;
  const std::shared_ptr<CheckinDeviceRegistry>& devices() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace quillet::backend
