#include "backend/checkin/CheckinServer.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <mutex>
#include <set>

#include "backend/authority/BackendHttpsServer.h"
#include "backend/checkin/CheckinRequest.h"
#include "platform/crypto/Digest.h"
#include "platform/log/Log.h"

namespace quillet::backend {
namespace {

constexpr const char* kJsonType = "application/json";
constexpr int64_t kHourMillis = 3600 * 1000;

std::vector<std::pair<std::string, std::string>> headersOf(const httplib::Request& request) {
  return {request.headers.begin(), request.headers.end()};
}

}  // namespace

struct CheckinServer::Impl {
  explicit Impl(CheckinServerOptions o)
      : options(std::move(o)),
        devices(options.devices ? options.devices : std::make_shared<CheckinDeviceRegistry>()),
        clock(options.clock ? options.clock : platform::Clock::system()),
        https("checkin server", options.certificateFile, options.keyFile),
        nextDeviceId(options.nextDeviceId) {}

  void answerCheckin(const httplib::Request& request, httplib::Response& response);
  void answerFaults(const httplib::Request& request, httplib::Response& response);
  // The device this request is answered as: kept, or issued now.
  CheckinDevice deviceFor(const CheckinRequest& request, std::string* result);
  // The device's data answered and remembered at this check-in.
  void refresh(CheckinDevice& device, int64_t nowMillis) const;
  bool hasFault(CheckinFault fault) const {
    std::lock_guard lock(mutex);
    return faults.count(fault) > 0;
  }

  CheckinServerOptions options;
  std::shared_ptr<CheckinDeviceRegistry> devices;
  std::shared_ptr<platform::Clock> clock;
  BackendHttpsServer https;
  BackendRequestLog log;
  mutable std::mutex mutex;  // guards the three below
  std::set<CheckinFault> faults;
  std::optional<uint64_t> fixedDeviceId;
  std::optional<uint64_t> nextDeviceId;
};

CheckinDevice CheckinServer::Impl::deviceFor(const CheckinRequest& request, std::string* result) {
  std::optional<uint64_t> fixedId;
  {
    std::lock_guard lock(mutex);
    fixedId = fixedDeviceId;
  }
  if (fixedId) {
    if (auto fixed = devices->device(std::to_string(*fixedId))) {
      *result = "answered as fixed device " + fixed->idText;
      return *fixed;
    }
    CheckinDevice device = devices->issue(fixedId);
    *result = "issued fixed device " + device.idText;
    return device;
  }
  const std::string requestId = std::to_string(request.id);
  if (request.id != 0 && devices->checkCredentials(requestId, std::to_string(request.securityToken))) {
    if (auto known = devices->device(requestId)) {
      *result = "kept device " + requestId;
      return *known;
    }
  }
  std::optional<uint64_t> forcedId;
  {
    std::lock_guard lock(mutex);
    forcedId = nextDeviceId;
    nextDeviceId.reset();
  }
  CheckinDevice device = devices->issue(forcedId);
  *result = "issued device " + device.idText;
  if (request.id != 0) result->append(" (unknown id and secret " + requestId + ")");
  return device;
}

void CheckinServer::Impl::refresh(CheckinDevice& device, int64_t nowMillis) const {
  device.lastCheckinMillis = nowMillis;
  device.versionInfo = options.versionInfo;
  device.settings = options.settings;
  std::string data = device.idText;
  for (const std::string& part : {device.secret, options.versionInfo, options.deviceDataVersionInfo}) {
    data.append("\n").append(part);
  }
  for (const auto& [name, value] : options.settings) data.append("\n").append(name).append("=").append(value);
  const auto sha1 = platform::Digest::sha1(data);
  device.digest = platform::Digest::hex(sha1);
  devices->update(device);
}

void CheckinServer::Impl::answerCheckin(const httplib::Request& request, httplib::Response& response) {
  const int64_t now = clock->wallMilliseconds();
  BackendRequest record{request.method, request.path, headersOf(request), request.body, now, 0, ""};
  auto finish = [&](int status, const std::string& body, const char* type, std::string result) {
    record.status = status;
    record.result = std::move(result);
    log.record(record);
    response.status = status;
    response.set_content(body, type);
  };

  if (hasFault(CheckinFault::Drop)) {
    record.result = "dropped (fault)";
    log.record(record);
    if (!BackendHttpsServer::dropConnection(request))
      platform::Log::write("checkin server: cannot drop the connection");
    return;
  }
  std::string reason;
  std::optional<CheckinRequest> checkin;
  const std::string contentType = request.get_header_value("content-type");
  if (contentType != kJsonType) {
    reason = "content-type must be \"application/json\", not \"" + contentType + "\"";
  } else {
    checkin = CheckinRequest::parse(request.body, &reason);
  }
  if (!checkin) {
    platform::Log::write("checkin server: refused: " + reason);
    return finish(400, reason + "\n", "text/plain", "refused: " + reason);
  }

  std::string result;
  CheckinDevice device = deviceFor(*checkin, &result);
  refresh(device, now);
  if (hasFault(CheckinFault::GarbageBody)) {
    return finish(200, "<html><body>Service Unavailable</body></html>", "text/html",
                  result + "; garbage answer (fault)");
  }
  nlohmann::json settings = nlohmann::json::array();
  for (const auto& [name, value] : options.settings) settings.push_back({{"name", name}, {"value", value}});
  nlohmann::json answer = {{"android_id", device.id},
                           {"security_token", std::strtoull(device.secret.c_str(), nullptr, 10)},
                           {"time_msec", hasFault(CheckinFault::FutureTime) ? now + kHourMillis : now},
                           {"device_data_version_info", options.deviceDataVersionInfo},
                           {"digest", device.digest},
                           {"version_info", options.versionInfo},
                           {"setting", settings}};
  if (hasFault(CheckinFault::MissingDeviceId)) {
    answer.erase("android_id");
    result += "; without android_id (fault)";
  }
  if (hasFault(CheckinFault::FutureTime)) result += "; time an hour ahead (fault)";
  const bool serverError = hasFault(CheckinFault::ServerError);
  if (serverError) result += "; HTTP 500 (fault)";
  finish(serverError ? 500 : 200, answer.dump(), kJsonType, result);
}

void CheckinServer::Impl::answerFaults(const httplib::Request& request, httplib::Response& response) {
  const auto command = nlohmann::json::parse(request.body, nullptr, false);
  auto refuse = [&](const char* message) {
    response.status = 400;
    response.set_content(nlohmann::json{{"error", message}}.dump(), kJsonType);
  };
  if (!command.is_object()) return refuse("the body must be a JSON object");
  std::lock_guard lock(mutex);
  if (command.value("clear", false)) {
    faults.clear();
    fixedDeviceId.reset();
  } else if (command.contains("device_id")) {
    if (!command["device_id"].is_number_unsigned()) return refuse("\"device_id\" must be a positive integer");
    const uint64_t id = command["device_id"].get<uint64_t>();
    fixedDeviceId = id == 0 ? std::nullopt : std::optional<uint64_t>(id);
  } else {
    const auto name = command.value("fault", std::string());
    const auto fault = checkinFaultNamed(name);
    if (!fault) return refuse("unknown fault");
    if (command.value("on", true)) {
      faults.insert(*fault);
    } else {
      faults.erase(*fault);
    }
  }
  response.set_content("{}", kJsonType);
}

CheckinServer::CheckinServer(CheckinServerOptions options) : impl_(std::make_unique<Impl>(std::move(options))) {
  httplib::Server& http = impl_->https.server();
  http.Post("/checkin", [this](const httplib::Request& q, httplib::Response& r) { impl_->answerCheckin(q, r); });
  http.Get("/_admin/requests",
           [this](const httplib::Request&, httplib::Response& r) { r.set_content(impl_->log.json(), kJsonType); });
  http.Post("/_admin/faults", [this](const httplib::Request& q, httplib::Response& r) { impl_->answerFaults(q, r); });
}

CheckinServer::~CheckinServer() { stop(); }

bool CheckinServer::start(platform::Error* error) {
  return impl_->https.start(impl_->options.host, impl_->options.port, error);
}

void CheckinServer::stop() { impl_->https.stop(); }

int CheckinServer::port() const { return impl_->https.port(); }
std::string CheckinServer::url() const { return impl_->https.baseUrl() + "/checkin"; }

void CheckinServer::setFault(CheckinFault fault, bool on) {
  std::lock_guard lock(impl_->mutex);
  if (on) {
    impl_->faults.insert(fault);
  } else {
    impl_->faults.erase(fault);
  }
}

void CheckinServer::setFixedDeviceId(std::optional<uint64_t> id) {
  std::lock_guard lock(impl_->mutex);
  impl_->fixedDeviceId = id;
}

void CheckinServer::setNextDeviceId(uint64_t id) {
  std::lock_guard lock(impl_->mutex);
  impl_->nextDeviceId = id;
}

void CheckinServer::clearFaults() {
  std::lock_guard lock(impl_->mutex);
  impl_->faults.clear();
  impl_->fixedDeviceId.reset();
}

std::vector<BackendRequest> CheckinServer::requests() const { return impl_->log.requests(); }
const std::shared_ptr<CheckinDeviceRegistry>& CheckinServer::devices() const { return impl_->devices; }

}  // namespace quillet::backend
