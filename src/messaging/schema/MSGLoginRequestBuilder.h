#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "messaging/schema/Relay.pb.h"

namespace quillet::messaging {

// Fills a RelayLoginRequest the way this client sends it: the fixed values,
// the device's credentials, the ids it has received but not yet had
// confirmed, and the single "new_vc" setting. Pure; any thread.
class MSGLoginRequestBuilder {
 public:
  static constexpr const char* kLibraryVersion = "1.1.4";
  static constexpr const char* kRelayDomain = "relay.quillet.local";

  // `authId` is the device id in decimal as check-in gave it; `networkType`
  // the value of the connection's currentNetworkType.
  static RelayLoginRequest loginRequest(const std::string& authId, const std::string& token, int32_t networkType,
                                        const std::vector<std::string>& receivedPersistentIds);

  // "android-%llx" of the device id read as a signed 64-bit decimal: leading
  // spaces and a sign are taken, reading stops at the first non-digit, and a
  // value out of range is clamped to the nearest 64-bit limit.
  static std::string deviceIdForAuthId(const std::string& authId);
  // The device id read as above (0 when no digit leads).
  static int64_t signedValueOfDecimal(const std::string& text);
};

}  // namespace quillet::messaging
