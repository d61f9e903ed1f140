#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace quillet::backend {

// A device as the check-in server issued it, with what the registration
// server gave it since. A plain value.
struct CheckinDevice {
  uint64_t id = 0;
  std::string idText;                                         // `id` in decimal: the device id as the client keeps it
  std::string secret;                                         // decimal text of the secret
  std::string digest;                                         // last digest answered
  std::string versionInfo;                                    // last "version_info" answered
  std::vector<std::pair<std::string, std::string>> settings;  // last settings answered
  int64_t lastCheckinMillis = 0;                              // server time of the last check-in
  std::map<std::string, std::string> authTokensBySender;      // per-entity auth tokens issued
};

}  // namespace quillet::backend
