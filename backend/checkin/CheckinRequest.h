#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quillet::backend {

// A check-in request body, read strictly: exactly the JSON object that the
// client sends, every key present with its type and its fixed values, and
// nothing else. A plain value.
struct CheckinRequest {
  std::string model;
  std::string osVersion;  // "IOS_..."
  int64_t lastCheckinMillis = 0;
  uint32_t loggingId = 0;
  std::string locale;
  std::string digest;
  std::string timezone;
  int64_t id = 0;             // 0 on a first check-in
  int64_t securityToken = 0;  // 0 on a first check-in

  // The request in `body`, or nullopt with a one-line reason in `reason`.
  static std::optional<CheckinRequest> parse(const std::string& body, std::string* reason);
};

}  // namespace quillet::backend
