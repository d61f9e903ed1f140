#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backend/authority/BackendRandom.h"
#include "backend/checkin/CheckinDevice.h"

namespace quillet::backend {

// The devices that check-in issued, shared (std::shared_ptr) by the
// check-in, registration and relay servers. Devices are keyed by the decimal
// text of their id. Thread-safe.
class CheckinDeviceRegistry {
 public:
  // A new device with a random secret and the id `id`, or a random 63-bit
  // positive id. An id already known is given a new secret and a fresh record.
  CheckinDevice issue(std::optional<uint64_t> id = std::nullopt);
  // Adds or replaces a device as given (tests, fixed credentials).
  void put(CheckinDevice device);
  // Replaces the check-in data of a known device (digest, version, settings,
  // time); auth tokens stay. False when the device is unknown.
  bool update(const CheckinDevice& device);

  std::optional<CheckinDevice> device(const std::string& idText) const;
  std::vector<CheckinDevice> devices() const;
  // True when the device is known and `secret` is its secret.
  bool checkCredentials(const std::string& idText, const std::string& secret) const;

  // Issues (or gives again) the auth token of `sender` for the device; "" when unknown.
  std::string issueAuthToken(const std::string& idText, const std::string& sender);
  // The (device id text, sender) that an auth token was issued to.
  std::optional<std::pair<std::string, std::string>> authTokenOwner(const std::string& token) const;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, CheckinDevice> devices_;
  BackendRandom random_;
};

}  // namespace quillet::backend
