#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace quillet::backend {

// One request as a stand-in server received it, with what the server made of it.
struct BackendRequest {
  std::string method;
  std::string path;
  std::vector<std::pair<std::string, std::string>> headers;  // as received
  std::string body;
  int64_t timeMillis = 0;  // server time, milliseconds since 1970
  int status = 0;          // HTTP status answered; 0: the connection was closed without answer
  std::string result;      // one line: what was issued, or why the request was refused
};

// The in-memory record of a server's requests, oldest first. Thread-safe.
class BackendRequestLog {
 public:
  void record(BackendRequest request);
  std::vector<BackendRequest> requests() const;
  void clear();
  // The record as a JSON array of objects with the fields above ("headers" an object).
  std::string json() const;

 private:
  mutable std::mutex mutex_;
  std::vector<BackendRequest> requests_;
};

}  // namespace quillet::backend
