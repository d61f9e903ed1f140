#pragma once

#include <httplib.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "platform/value/Error.h"

namespace quillet::backend {

// HTTPS serving for the stand-in servers: one TLS listener with the
// backend's server certificate, its serving threads, and the closing of a
// connection without an answer. The owner installs its routes on server()
// before start(); handlers run on the library's threads. The destructor stops.
class BackendHttpsServer {
 public:
  // `name` prefixes the log lines and error texts ("checkin server").
  BackendHttpsServer(std::string name, const std::filesystem::path& certificateFile,
                     const std::filesystem::path& keyFile);
  ~BackendHttpsServer();
  BackendHttpsServer(const BackendHttpsServer&) = delete;
  BackendHttpsServer& operator=(const BackendHttpsServer&) = delete;

  httplib::Server& server() { return *server_; }

  // Binds `host`:`port` (0: ephemeral) and serves on a thread of its own.
  // False with `error` when the certificate cannot be loaded or the port had.
  bool start(const std::string& host, int port, platform::Error* error = nullptr);
  // Stops serving and joins the threads; safe to call twice.
  void stop();

  int port() const { return port_; }  // 0 before start
  std::string baseUrl() const;        // "https://<host>:<port>"

  // From inside a handler: ends the request's TCP connection in both
  // directions, so that the peer sees it close without an answer. False
  // when the request came on no TLS connection.
  static bool dropConnection(const httplib::Request& request);

 private:
  std::string name_;
  std::unique_ptr<httplib::SSLServer> server_;
  std::thread thread_;
  std::string host_;
  std::atomic<int> port_{0};
  bool running_ = false;
};

}  // namespace quillet::backend
