#pragma once

#include <httplib.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace quillet::platform {

// A loopback HTTP(S) server for the client's tests: handlers are added to
// server() before start(); stop() (or the destructor) opens the gate and
// joins. Handlers may wait() on the gate, which opens only at open() or stop().
class LocalServer {
 public:
  LocalServer() : server_(std::make_unique<httplib::Server>()) {}
  LocalServer(const std::string& certFile, const std::string& keyFile)
      : server_(std::make_unique<httplib::SSLServer>(certFile.c_str(), keyFile.c_str())) {}
  ~LocalServer() { stop(); }

  httplib::Server& server() { return *server_; }
  // Binds 127.0.0.1 on a free port and serves on a thread; returns the port.
  int start() {
    port_ = server_->bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_->listen_after_bind(); });
    // stop() before the server runs would be lost and the join would wait
    // forever, so start() returns only once it listens.
    while (!server_->is_running()) std::this_thread::yield();
    return port_;
  }
  std::string url(const std::string& path, const char* scheme = "http") const {
    return std::string(scheme) + "://127.0.0.1:" + std::to_string(port_) + path;
  }
  void stop() {
    open();
    server_->stop();
    if (thread_.joinable()) thread_.join();
  }

  // Blocks a handler until the gate opens.
  void wait() {
    std::unique_lock lock(mutex_);
    ++waiting_;
    changed_.notify_all();
    changed_.wait(lock, [this] { return open_; });
  }
  // Waits (for I/O, at most 10 s) until some handler is waiting at the gate.
  bool awaitHandler() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(10), [this] { return waiting_ > 0; });
  }
  void open() {
    std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }

 private:
  std::unique_ptr<httplib::Server> server_;
  int port_ = 0;
  std::thread thread_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool open_ = false;
  int waiting_ = 0;
};

}  // namespace quillet::platform
