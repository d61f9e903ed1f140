#pragma once

// A fixture with the stand-in news server on an ephemeral port of
// 127.0.0.1 and a phone data root, for scripts played against the server.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "PhoneScript.h"
#include "backend/news/NewsServer.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::news::testing {

class ServedPhoneTest : public ::testing::Test {
 protected:
  void SetUp() override {
    backend::NewsServerOptions options;
    options.port = 0;
    options.dataDirectory = serverDir_.path();
    server_ = std::make_unique<backend::NewsServer>(options);
    ASSERT_TRUE(server_->start());
  }
  void TearDown() override { server_->stop(); }

  // The phone on wifi against the server, with its own data root.
  PhoneOptions phoneOptions() const {
    PhoneOptions options;
    options.dataDirectory = phoneDir_.path();
    options.network = "wifi";
    options.apiBase = server_->apiUrl();
    return options;
  }

  // The queries the server received for an API method, in order.
  std::vector<std::string> queries(const std::string& method) {
    std::vector<std::string> out;
    for (const auto& request : server_->store()->recordedRequests()) {
      if (request.path.ends_with("/" + method)) out.push_back(request.query);
    }
    return out;
  }

  ::quillet::testing::LogCapture log_;
  ::quillet::testing::TempDir serverDir_;
  ::quillet::testing::TempDir phoneDir_;
  std::unique_ptr<backend::NewsServer> server_;
};

}  // namespace quillet::news::testing
