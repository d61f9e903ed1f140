#include "instanceid/registration/InstanceIDRegistrationContent.h"

#include "instanceid/support/InstanceIDLogger.h"
#include "platform/registry/ClassRegistry.h"
#include "platform/value/Format.h"

namespace quillet::instanceid {

using platform::Value;

std::vector<std::string> InstanceIDRegistrationContent::componentsSeparatedByString(const std::string& text,
                                                                                    const std::string& separator) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (size_t found = text.find(separator); found != std::string::npos; found = text.find(separator, start)) {
    parts.push_back(text.substr(start, found - start));
    start = found + separator.size();
  }
  parts.push_back(text.substr(start));
  return parts;
}

std::string InstanceIDRegistrationContent::fetchRequestContent(const std::string& authorizedEntity,
                                                               const std::string& scope, const std::string& deviceID,
                                                               const InstanceIDEnvironment& env, uint64_t requestID) {
  std::string content =
      platform::format("sender=%@&app=%@&device=%@&app_ver=%@&X-subtype=%@&X-scope=%@&plat=%d&%@=%lu",
                       {Value(authorizedEntity), Value(env.bundleIdentifier), Value(deviceID), Value(env.appVersion),
                        Value(authorizedEntity), Value(scope), Value(2), Value("X-kid"), Value(requestID)});
  // The messaging client tells its version only when it is in the program.
  const std::optional<Value> version = platform::ClassRegistry::shared().call("MSGService", "MSGSDKVersion");
  if (version && version->isString() && !version->string().empty()) {
    content += platform::format("&%@=%@", {Value("X-msg_ver"), *version});
  }
  return content;
}

std::string InstanceIDRegistrationContent::deleteRequestContentWithDeviceID(const std::string& deviceID,
                                                                            const std::string& scope,
                                                                            const InstanceIDEnvironment& env,
                                                                            uint64_t requestID) {
  return platform::format("device=%@&app=%@&app_ver=%@&%@=%@&%@=%lu&delete=true",
                          {Value(deviceID), Value(env.bundleIdentifier), Value(env.appVersion), Value("X-scope"),
                           Value(scope), Value("X-kid"), Value(requestID)});
}

std::string InstanceIDRegistrationContent::requestContentSuffixFromOptions(const Value::Dictionary& options) {
  static const char* const kAllowedKeys[] = {"apns_token"};
  std::string suffix;
  for (const char* key : kAllowedKeys) {
    const auto found = options.find(key);
    if (found == options.end()) continue;
    const Value& value = found->second;
    if (!value.isNumber() && !value.isString()) continue;
    suffix += "&";
    suffix += key;
    suffix += "=";
    suffix += value.description();
  }
  return suffix;
}

std::string InstanceIDRegistrationContent::publicKeyContent(const std::optional<std::string>& appID,
                                                            const std::string& pub2,
                                                            const std::optional<std::string>& signature) {
  return platform::format("&%@=%@&%@=%@&%@=%@", {Value("appid"), appID ? Value(*appID) : Value(), Value("pub2"),
                                                 Value(pub2), Value("sig"), signature ? Value(*signature) : Value()});
}

std::map<std::string, std::string> InstanceIDRegistrationContent::parseFetchTokenResponse(const std::string& body) {
  std::map<std::string, std::string> parsed;
  for (const std::string& line : componentsSeparatedByString(body, "\n")) {
    const std::vector<std::string> parts = componentsSeparatedByString(line, "=");
    if (parts.size() < 2) {
      iidLogError(platform::format("Unexpected result %@", {Value(line)}));
      continue;
    }
    parsed[parts[0]] = parts[1];
  }
  return parsed;
}

InstanceIDRegistrationContent::TokenText InstanceIDRegistrationContent::tokenFromTokenText(const std::string& text,
                                                                                           uint64_t requestID) {
  TokenText result;
  if (text.starts_with("|")) {
    const std::vector<std::string> fields = componentsSeparatedByString(text, "|");
    if (fields[1] != "ID") {
      iidLogError(platform::format("Unexpected token structure in response %@", {Value(text)}));
    }
    if (fields.size() < 5) return result;
    result.command = fields[3];
    std::string token = fields.back();
    if (token.starts_with(":")) token.erase(0, 1);
    result.token = std::move(token);
    return result;
  }
  const std::string prefix = platform::format("%lu:", {Value(requestID)});
  if (text.starts_with(prefix)) result.token = text.substr(prefix.size());
  return result;
}

}  // namespace quillet::instanceid
