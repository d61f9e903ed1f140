#include "messaging/schema/MSGLoginRequestBuilder.h"

#include <cctype>
#include <cinttypes>
#include <cstdio>
#include <limits>

namespace quillet::messaging {

RelayLoginRequest MSGLoginRequestBuilder::loginRequest(const std::string& authId, const std::string& token,
                                                       int32_t networkType,
                                                       const std::vector<std::string>& receivedPersistentIds) {
  RelayLoginRequest request;
  std::string id = "ios-";
  id.append(kLibraryVersion);
  request.set_id_p(id);
  request.set_domain(kRelayDomain);
  request.set_user(authId);
  request.set_resource(authId);
  request.set_authtoken(token);
  request.set_deviceid(deviceIdForAuthId(authId));
  request.set_lastrmqid(1);
  request.set_adaptiveheartbeat(false);
  request.set_usermq2(true);
  request.set_accountid(1000000);
  request.set_authservice(RelayLoginRequest::AUTH_SERVICE_2);
  request.set_networktype(networkType);
  for (const auto& persistentId : receivedPersistentIds) request.add_receivedpersistentidarray(persistentId);
  RelaySetting* setting = request.add_settingarray();
  setting->set_name("new_vc");
  setting->set_value("1");
  return request;
}

std::string MSGLoginRequestBuilder::deviceIdForAuthId(const std::string& authId) {
  char text[40];
  std::snprintf(text, sizeof text, "android-%llx",
                static_cast<unsigned long long>(static_cast<uint64_t>(signedValueOfDecimal(authId))));
  return text;
}

int64_t MSGLoginRequestBuilder::signedValueOfDecimal(const std::string& text) {
  size_t i = 0;
  while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i]))) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  // Accumulate the magnitude with saturation, then clamp into the signed range.
  const uint64_t limit = negative ? uint64_t{1} << 63 : uint64_t(std::numeric_limits<int64_t>::max());
  uint64_t magnitude = 0;
  for (; i < text.size() && std::isdigit(static_cast<unsigned char>(text[i])); ++i) {
    uint64_t digit = uint64_t(text[i] - '0');
    if (magnitude > (limit - digit) / 10) {
      magnitude = limit;
      break;
    }
    magnitude = magnitude * 10 + digit;
  }
  if (negative) return magnitude == limit ? std::numeric_limits<int64_t>::min() : -int64_t(magnitude);
  return int64_t(magnitude);
}

}  // namespace quillet::messaging
