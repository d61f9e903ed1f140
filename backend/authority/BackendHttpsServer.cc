#include "backend/authority/BackendHttpsServer.h"

#include <openssl/ssl.h>
#include <sys/socket.h>

#include "backend/authority/BackgroundListener.h"
#include "platform/log/Log.h"

namespace quillet::backend {

BackendHttpsServer::BackendHttpsServer(std::string name, const std::filesystem::path& certificateFile,
                                       const std::filesystem::path& keyFile)
    : name_(std::move(name)), server_(std::make_unique<httplib::SSLServer>(certificateFile.c_str(), keyFile.c_str())) {
  // An idle kept-alive connection is closed after a second, so that stop()
  // does not wait out the library's default keep-alive time.
  server_->set_keep_alive_timeout(1);
}

BackendHttpsServer::~BackendHttpsServer() { stop(); }

bool BackendHttpsServer::start(const std::string& host, int port, platform::Error* error) {
  if (running_) return true;
  auto fail = [&](std::string message) {
    message.insert(0, name_ + ": ");
    platform::Log::write(message);
    if (error) {
      *error = platform::Error::withDescription("quillet.backend.https", 1, message);
    }
    return false;
  };
  if (!server_->is_valid()) return fail("cannot load the server certificate");
  const int bound = port == 0 ? server_->bind_to_any_port(host) : (server_->bind_to_port(host, port) ? port : -1);
  if (bound <= 0) return fail("cannot listen on " + host + ":" + std::to_string(port));
  host_ = host;
  port_ = bound;
  bool listening = false;
  thread_ = listenInBackground(*server_, &listening);
  if (!listening) {
    thread_.join();
    return fail("cannot serve on " + host + ":" + std::to_string(bound));
  }
  running_ = true;
  return true;
}

void BackendHttpsServer::stop() {
  if (!running_) return;
  server_->stop();
  if (thread_.joinable()) thread_.join();
  running_ = false;
}

std::string BackendHttpsServer::baseUrl() const { return "https://" + host_ + ":" + std::to_string(port_.load()); }

bool BackendHttpsServer::dropConnection(const httplib::Request& request) {
  if (!request.ssl) return false;
  const int fd = SSL_get_fd(request.ssl);
  return fd >= 0 && ::shutdown(fd, SHUT_RDWR) == 0;
}

}  // namespace quillet::backend
