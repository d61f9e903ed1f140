#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "instanceid/support/InstanceIDEnvironment.h"
#include "platform/value/Value.h"

namespace quillet::instanceid {

// The text of the registration exchange: the form bodies the client sends
// (UTF-8, nothing percent-escaped) and the line replies it reads.
// Stateless; safe from any thread.
class InstanceIDRegistrationContent {
 public:
  // What a "token" value says: the token (null when the text has an
  // unexpected form or answers another request) and, for the structured
  // form, the command word in field 3 ("SYNC", "RST", ...; "" otherwise).
  struct TokenText {
    std::optional<std::string> token;
    std::string command;
  };

  // `text` cut at each `separator`; empty pieces kept ("a|" gives "a", "").
  static std::vector<std::string> componentsSeparatedByString(const std::string& text, const std::string& separator);

  // "sender=...&app=...&device=...&app_ver=...&X-subtype=...&X-scope=...&plat=2&X-kid=<id>",
  // plus "&X-msg_ver=<v>" when the messaging class tells a non-empty version.
  static std::string fetchRequestContent(const std::string& authorizedEntity, const std::string& scope,
                                         const std::string& deviceID, const InstanceIDEnvironment& env,
                                         uint64_t requestID);
  // "device=...&app=...&app_ver=...&X-scope=<scope>&X-kid=<id>&delete=true".
  static std::string deleteRequestContentWithDeviceID(const std::string& deviceID, const std::string& scope,
                                                      const InstanceIDEnvironment& env, uint64_t requestID);
  // "&apns_token=<value>" when the options hold "apns_token" as a string or
  // number; every other option is left out.
  static std::string requestContentSuffixFromOptions(const platform::Value::Dictionary& options);
  // "&appid=<appid>&pub2=<pub2>&sig=<sig>"; a missing part reads "(null)".
  static std::string publicKeyContent(const std::optional<std::string>& appID, const std::string& pub2,
                                      const std::optional<std::string>& signature);

  // The reply's lines "name=value" by name. A line without "=" is logged
  // ("Unexpected result %@") and skipped; a value ends at its first "=";
  // a later line overrides an earlier one.
  static std::map<std::string, std::string> parseFetchTokenResponse(const std::string& body);
  // Reads a "token" value: "|ID|<id>|<command>|...|<token>" (one leading
  // ":" of the token dropped; fewer than 5 fields give no token) or
  // "<requestID>:<token>".
  static TokenText tokenFromTokenText(const std::string& text, uint64_t requestID);
};

}  // namespace quillet::instanceid
