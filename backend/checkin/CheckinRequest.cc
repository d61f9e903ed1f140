#include "backend/checkin/CheckinRequest.h"

#include <nlohmann/json.hpp>

#include <limits>
#include <set>

namespace quillet::backend {
namespace {

using nlohmann::json;

// Checks one JSON object field by field; the first failure is kept as the reason.
class Reader {
 public:
  Reader(const json& object, std::string where) : object_(object), where_(std::move(where)) {}

  bool hasExactly(const std::set<std::string>& keys, std::string* reason) const {
    for (const auto& [key, value] : object_.items()) {
      if (!keys.count(key)) return fail(reason, "unexpected key \"" + key + "\"");
    }
    for (const std::string& key : keys) {
      if (!object_.contains(key)) return fail(reason, "missing \"" + key + "\"");
    }
    return true;
  }

  // An integer in [low, high].
  bool integer(const char* key, int64_t low, int64_t high, int64_t* out, std::string* reason) const {
    const json& value = object_.at(key);
    if (!value.is_number_integer()) return fail(reason, std::string("\"") + key + "\" is not an integer");
    if (value.is_number_unsigned() && value.get<uint64_t>() > static_cast<uint64_t>(high)) {
      return fail(reason, std::string("\"") + key + "\" is out of range");
    }
    const int64_t number = value.get<int64_t>();
    if (number < low || number > high) return fail(reason, std::string("\"") + key + "\" is out of range");
    *out = number;
    return true;
  }

  bool exactly(const char* key, int64_t expected, std::string* reason) const {
    int64_t number = 0;
    if (!integer(key, std::numeric_limits<int64_t>::min(), std::numeric_limits<int64_t>::max(), &number, reason)) {
      return false;
    }
    if (number != expected) {
      return fail(reason, std::string("\"") + key + "\" must be " + std::to_string(expected));
    }
    return true;
  }

  bool text(const char* key, bool allowEmpty, std::string* out, std::string* reason) const {
    const json& value = object_.at(key);
    if (!value.is_string()) return fail(reason, std::string("\"") + key + "\" is not a string");
    *out = value.get<std::string>();
    if (!allowEmpty && out->empty()) return fail(reason, std::string("\"") + key + "\" is empty");
    return true;
  }

  bool fail(std::string* reason, const std::string& what) const {
    if (reason) *reason = where_ + what;
    return false;
  }

 private:
  const json& object_;
  std::string where_;
};

constexpr int64_t kMax = std::numeric_limits<int64_t>::max();

}  // namespace

std::optional<CheckinRequest> CheckinRequest::parse(const std::string& body, std::string* reason) {
  const json document = json::parse(body, nullptr, false);
  if (document.is_discarded() || !document.is_object()) {
    if (reason) *reason = "the body is not a JSON object";
    return std::nullopt;
  }
  CheckinRequest request;
  Reader top(document, "");
  int64_t loggingId = 0;
  if (!top.hasExactly({"checkin", "fragment", "logging_id", "locale", "version", "digest", "timezone",
                       "user_serial_number", "id", "security_token"},
                      reason) ||
      !top.exactly("fragment", 0, reason) || !top.integer("logging_id", 0, UINT32_MAX, &loggingId, reason) ||
      !top.text("locale", false, &request.locale, reason) || !top.exactly("version", 2, reason) ||
      !top.text("digest", true, &request.digest, reason) || !top.text("timezone", false, &request.timezone, reason) ||
      !top.exactly("user_serial_number", 0, reason) || !top.integer("id", 0, kMax, &request.id, reason) ||
      !top.integer("security_token", 0, kMax, &request.securityToken, reason)) {
    return std::nullopt;
  }
  request.loggingId = static_cast<uint32_t>(loggingId);
  if ((request.id == 0) != (request.securityToken == 0)) {
    if (reason) *reason = "\"id\" and \"security_token\" must both be 0 or both be set";
    return std::nullopt;
  }
  const json& checkin = document["checkin"];
  if (!checkin.is_object()) {
    if (reason) *reason = "\"checkin\" is not an object";
    return std::nullopt;
  }
  Reader inner(checkin, "checkin: ");
  if (!inner.hasExactly({"iosbuild", "type", "user_number", "last_checkin_msec"}, reason) ||
      !inner.exactly("type", 2, reason) || !inner.exactly("user_number", 0, reason) ||
      !inner.integer("last_checkin_msec", 0, kMax, &request.lastCheckinMillis, reason)) {
    return std::nullopt;
  }
  const json& build = checkin["iosbuild"];
  if (!build.is_object()) {
    if (reason) *reason = "checkin: \"iosbuild\" is not an object";
    return std::nullopt;
  }
  Reader buildReader(build, "checkin.iosbuild: ");
  if (!buildReader.hasExactly({"model", "os_version"}, reason) ||
      !buildReader.text("model", false, &request.model, reason) ||
      !buildReader.text("os_version", false, &request.osVersion, reason)) {
    return std::nullopt;
  }
  if (request.osVersion.rfind("IOS_", 0) != 0 || request.osVersion.size() == 4) {
    if (reason) *reason = "checkin.iosbuild: \"os_version\" must be \"IOS_\" and the system version";
    return std::nullopt;
  }
  return request;
}

}  // namespace quillet::backend
