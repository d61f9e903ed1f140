#pragma once

// The content pages on a manual-clock main loop, in a window, over a plain
// feed screen inside a navigation stack, talking to one stand-in news server
// for the whole suite (stopping a server waits out the keep-alive of the
// connection the client pools, so it is done once).
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "backend/news/NewsServer.h"
#include "news/api/Webmanager.h"
#include "news/support/ToastView.h"
#include "platform/reachability/ReachabilitySource.h"
#include "platform/runloop/RunLoop.h"
#include "platform/ui/AlertController.h"
#include "platform/ui/Application.h"
#include "platform/ui/NavigationController.h"
#include "platform/ui/UiEvents.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::news::testing {

class PagesTest : public ::testing::Test {
 protected:
  static constexpr const char* kClosedPortBase = "http://127.0.0.1:9/newsapp/api/";

  static void SetUpTestSuite() {
    dir_ = new ::quillet::testing::TempDir();
    backend::NewsServerOptions options;
    options.dataDirectory = dir_->path();
    server_ = new backend::NewsServer(options);
    ASSERT_TRUE(server_->start());
  }
  static void TearDownTestSuite() {
    delete server_;
    delete dir_;
  }

  void SetUp() override {
    platform::RunLoop::setMain(loop_);
    platform::Application::setSharedApplication(app_);
    platform::ReachabilitySource::setOverride(platform::ReachabilityOverride::WiFi);
    Webmanager::sharedObject().setAPIBase(server_->apiUrl());
    server_->clearFaults();
    app_->events()->subscribe([this](const platform::UiEvent& event) {
      if (event.kind == platform::UiEvent::Kind::Toast) toasts.push_back(event.text);
    });
    feed_ = std::make_shared<platform::ViewController>("HomeVC");
    navigation_ = std::make_shared<platform::NavigationController>(feed_);
    app_->window().setRootViewController(navigation_);
    app_->window().makeKeyAndVisible();
  }
  void TearDown() override {
    app_->window().setRootViewController(nullptr);
    ToastView::dropQueue();
    platform::ReachabilitySource::setOverride(platform::ReachabilityOverride::Automatic);
    Webmanager::sharedObject().setAPIBase(Webmanager::kDefaultAPIBase);
    platform::Application::setSharedApplication(nullptr);
    platform::RunLoop::setMain(nullptr);
  }

  // `screen` presented over the feed, as the options panel does.
  template <class T>
  std::shared_ptr<T> present(std::shared_ptr<T> screen) {
    navigation_->presentViewController(screen, true);
    return screen;
  }

  bool waitFor(const std::function<bool()>& done) { return loop_->runUntil(done, 10.0); }
  // Waits for the transport failure that a request to the closed port ends in.
  bool waitForTransportFailure() {
    return waitFor([this] {
      for (const auto& message : log.messages()) {
        if (message.rfind("Error: ", 0) == 0) return true;
      }
      return false;
    });
  }
  // The queries the server received for an API method, in order.
  static std::vector<std::string> queries(const std::string& method) {
    std::vector<std::string> out;
    for (const auto& request : server_->store()->recordedRequests()) {
      if (request.path.ends_with("/" + method)) out.push_back(request.query);
    }
    return out;
  }
  std::shared_ptr<platform::AlertController> alert() const {
    return std::dynamic_pointer_cast<platform::AlertController>(app_->window().visibleAlert());
  }

  ::quillet::testing::LogCapture log;
  static inline ::quillet::testing::TempDir* dir_ = nullptr;
  static inline backend::NewsServer* server_ = nullptr;
  std::shared_ptr<platform::ManualClock> clock_ = std::make_shared<platform::ManualClock>();
  std::shared_ptr<platform::RunLoop> loop_ = std::make_shared<platform::RunLoop>(clock_);
  std::shared_ptr<platform::Application> app_ =
      std::make_shared<platform::Application>(std::make_shared<platform::UiEvents>());
  std::shared_ptr<platform::ViewController> feed_;
  std::shared_ptr<platform::NavigationController> navigation_;
  std::vector<std::string> toasts;
};

}  // namespace quillet::news::testing
