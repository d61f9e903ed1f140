#include "backend/authority/BackendRequestLog.h"

#include <nlohmann/json.hpp>

namespace quillet::backend {

void BackendRequestLog::record(BackendRequest request) {
  std::lock_guard lock(mutex_);
  requests_.push_back(std::move(request));
}

std::vector<BackendRequest> BackendRequestLog::requests() const {
  std::lock_guard lock(mutex_);
  return requests_;
}

void BackendRequestLog::clear() {
  std::lock_guard lock(mutex_);
  requests_.clear();
}

std::string BackendRequestLog::json() const {
  nlohmann::json list = nlohmann::json::array();
  for (const BackendRequest& request : requests()) {
    nlohmann::json headers = nlohmann::json::object();
    for (const auto& [name, value] : request.headers) headers[name] = value;
    list.push_back({{"method", request.method},
                    {"path", request.path},
                    {"headers", headers},
                    {"body", request.body},
                    {"time_msec", request.timeMillis},
                    {"status", request.status},
                    {"result", request.result}});
  }
  // Bodies are the client's bytes: invalid UTF-8 is replaced rather than refused.
  return list.dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace quillet::backend
