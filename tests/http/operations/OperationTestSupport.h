#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

#include "platform/net/LocalServer.h"
#include "platform/runloop/RunLoop.h"

namespace quillet::http {

// A manual-clock main loop and a loopback server with a few replies:
// "/json" (JSON echo of the query), "/missing" (404 text), "/html" (a page),
// "/hold" (waits for the gate before answering).
class OperationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    loop_ = std::make_shared<platform::RunLoop>(std::make_shared<platform::ManualClock>());
    platform::RunLoop::setMain(loop_);
    auto& http = server_.server();
    // The transport's session lives for the process and keeps connections
    // open; one request per connection lets the server stop at once.
    http.set_keep_alive_max_count(1);
    http.Get("/json", [](const httplib::Request& request, httplib::Response& response) {
      const std::string query =
          request.target.find('?') == std::string::npos ? "" : request.target.substr(request.target.find('?') + 1);
      response.set_content(
          "{\"status\":1,\"query\":\"" + query + "\",\"lang\":\"" + request.get_header_value("Accept-Language") + "\"}",
          "application/json");
    });
    http.Get("/missing", [](const httplib::Request&, httplib::Response& response) {
      response.status = 404;
      response.set_content("gone", "text/plain");
    });
    http.Get("/html", [](const httplib::Request&, httplib::Response& response) {
      response.set_content("<html></html>", "text/html");
    });
    http.Get("/hold", [this](const httplib::Request&, httplib::Response& response) {
      server_.wait();
      response.set_content("{}", "application/json");
    });
    server_.start();
  }
  void TearDown() override { server_.stop(); }

  // Runs the main loop (real I/O, manual clock) until `done` holds.
  bool runUntil(const std::function<bool()>& done) { return loop_->runUntil(done, 10); }

  std::shared_ptr<platform::RunLoop> loop_;
  platform::LocalServer server_;
};

}  // namespace quillet::http
