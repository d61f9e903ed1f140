#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <mutex>

#include "http/images/NKImageCache.h"
#include "platform/image/TestImages.h"
#include "platform/net/LocalServer.h"
#include "platform/runloop/RunLoop.h"

namespace quillet::http {

// A manual-clock main loop and a loopback server of pictures:
// "/img/<name>" answers the body and type put(name, ...) registered and
// counts the requests per name; "/hold" waits for the gate, then answers a PNG.
class ImageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    loop_ = std::make_shared<platform::RunLoop>(std::make_shared<platform::ManualClock>());
    platform::RunLoop::setMain(loop_);
    NKImageCache::sharedImageCache().removeAllObjects();
    auto& http = server_.server();
    http.set_keep_alive_max_count(1);
    http.Get(R"(/img/(\w+))", [this](const httplib::Request& request, httplib::Response& response) {
      std::lock_guard lock(mutex_);
      const std::string name = request.matches[1];
      ++hits_[name];
      accepts_[name] = request.get_header_value("Accept");
      auto found = replies_.find(name);
      if (found == replies_.end()) {
        response.status = 404;
        return;
      }
      response.set_content(found->second.first, found->second.second);
    });
    http.Get("/hold", [this](const httplib::Request&, httplib::Response& response) {
      server_.wait();
      response.set_content(platform::test::text(platform::test::png(9, 9)), "image/png");
    });
    server_.start();
  }
  void TearDown() override { server_.stop(); }

  void put(const std::string& name, const platform::test::Bytes& body, const std::string& type = "image/png") {
    std::lock_guard lock(mutex_);
    replies_[name] = {platform::test::text(body), type};
  }
  int hits(const std::string& name) {
    std::lock_guard lock(mutex_);
    return hits_[name];
  }
  std::string accept(const std::string& name) {
    std::lock_guard lock(mutex_);
    return accepts_[name];
  }
  std::string url(const std::string& name) const { return server_.url("/img/" + name); }
  bool runUntil(const std::function<bool()>& done) { return loop_->runUntil(done, 10); }

  std::shared_ptr<platform::RunLoop> loop_;
  platform::LocalServer server_;
  std::mutex mutex_;
  std::map<std::string, std::pair<std::string, std::string>> replies_;
  std::map<std::string, int> hits_;
  std::map<std::string, std::string> accepts_;
};

}  // namespace quillet::http
