#pragma once

#include <memory>
#include <string>
#include <vector>

#include "backend/authority/BackendRequestLog.h"
#include "backend/checkin/CheckinDeviceRegistry.h"
#include "backend/registration/RegistrationServerOptions.h"
#include "backend/registration/RegistrationSwitch.h"
#include "backend/registration/RegistrationTokenBook.h"
#include "platform/value/Error.h"

namespace quillet::backend {

// The stand-in registration service, over HTTPS:
//   POST /iid/register   a fetch or delete form (see RegistrationRequest),
//       authorised by "DeviceLogin <device>:<secret>" of a checked-in device
//       or "DeviceLogin <auth token>" issued to it for that sender, with the
//       header "app" equal to the form's, and the key proof verified (see
//       RegistrationKeyProof). Answers, always HTTP 200 and plain text:
//       "token=<X-kid>:<token>\n", "deleted=<X-scope>\n", or
//       "Error=AUTHENTICATION_FAILED\n" / "Error=INVALID_PARAMETERS\n" (the
//       reason goes to the record and the log).
//   GET  /_admin/requests              every request received, as JSON
//   GET  /_admin/tokens?device=<id>    the device's tokens, as JSON
//   POST /_admin/switches  {"switch": "<name>", "text": "...", "count": 1}
//                          (names as RegistrationSwitch::kindNamed) or {"clear": true}
// Switches other than "drop" change only answers to requests that passed
// the checks. Runs on its own threads between start() and stop(); the
// public functions may be called from any thread. The destructor stops it.
class RegistrationServer {
 public:
  explicit RegistrationServer(RegistrationServerOptions options);
  ~RegistrationServer();
  RegistrationServer(const RegistrationServer&) = delete;
  RegistrationServer& operator=(const RegistrationServer&) = delete;

  bool start(platform::Error* error = nullptr);
  void stop();

  int port() const;         // 0 before start
  std::string url() const;  // "https://<host>:<port>/iid/register"

  void addSwitch(RegistrationSwitch change);
  void clearSwitches();

  std::vector<RegistrationToken> tokens(const std::string& device) const;
  std::vector<BackendRequest> requests() const;
  const std::shared_ptr<CheckinDeviceRegistry>& devices() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace quillet::backend
