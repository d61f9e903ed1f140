#pragma once

// A screen of the app on a manual-clock main loop, in a window, whose
// requests go nowhere (a closed port): tests hand it replies directly.
#include <memory>
#include <string>
#include <vector>

#include "news/api/Webmanager.h"
#include "news/app/AppEnvironment.h"
#include "news/home/HomeVC.h"
#include "news/store/NewsDatabaseFile.h"
#include "news/support/ToastView.h"
#include "platform/reachability/ReachabilitySource.h"
#include "platform/ui/Application.h"
#include "platform/ui/NavigationController.h"
#include "platform/ui/UiEvents.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::news::testing {

class HomeFixture {
 public:
  HomeFixture()
      : fileSystem_(std::make_shared<platform::FileSystem>(
            dir_.path(), platform::FileSystem::Options{NewsDatabaseFile::builtResourceDirectory()})),
        defaults_(*fileSystem_, "test"),
        clock_(std::make_shared<platform::ManualClock>()),
        loop_(std::make_shared<platform::RunLoop>(clock_)),
        app_(std::make_shared<platform::Application>(std::make_shared<platform::UiEvents>())) {
    platform::RunLoop::setMain(loop_);
    platform::Application::setSharedApplication(app_);
    platform::ReachabilitySource::setOverride(platform::ReachabilityOverride::WiFi);
    Webmanager::sharedObject().setAPIBase("http://127.0.0.1:9/newsapp/api/");
    NewsDatabaseFile(fileSystem_).copyDatabaseIfNeeded();
    app_->events()->subscribe([this](const platform::UiEvent& event) {
      if (event.kind == platform::UiEvent::Kind::Toast) toasts.push_back(event.text);
    });
  }
  ~HomeFixture() {
    // Let the requests to the closed port fail before the screens go.
    loop_->runUntil([this] { return failedRequests() >= requests; }, 5.0);
    app_->window().setRootViewController(nullptr);
    ToastView::dropQueue();
    platform::ReachabilitySource::setOverride(platform::ReachabilityOverride::Automatic);
    Webmanager::sharedObject().setAPIBase(Webmanager::kDefaultAPIBase);
    platform::Application::setSharedApplication(nullptr);
    platform::RunLoop::setMain(nullptr);
  }

  // A new screen of type T shown in the window, inside a navigation stack.
  template <class T = HomeVC>
  std::shared_ptr<T> show() {
    auto screen = std::make_shared<T>(AppEnvironment{&defaults_, loop_.get(), fileSystem_});
    app_->window().setRootViewController(std::make_shared<platform::NavigationController>(screen));
    app_->window().makeKeyAndVisible();
    return screen;
  }

  // A story as the server sends it.
  static platform::Value story(const std::string& id, const std::string& type = "Image",
                               const std::string& media = "http://127.0.0.1:9/p.png") {
    return platform::Value::dictionary({{"id", platform::Value(id)},
                                        {"new_title", platform::Value("Story " + id)},
                                        {"news_description", platform::Value("Body " + id)},
                                        {"content_manger_name", platform::Value("Ada")},
                                        {"created_date", platform::Value("2016-01-02")},
                                        {"news_media_type", platform::Value(type)},
                                        {"news_image_hd", platform::Value(media)},
                                        {"news_image_normal", platform::Value(media)}});
  }
  static platform::Value reply(std::vector<platform::Value> stories) {
    return platform::Value::dictionary(
        {{"status", platform::Value(true)},
         {"result", platform::Value(platform::Value::Array(stories.begin(), stories.end()))}});
  }

  size_t failedRequests() const {
    size_t failed = 0;
    for (const auto& message : log.messages()) failed += message.rfind("Error: ", 0) == 0;
    return failed;
  }

  ::quillet::testing::LogCapture log;
  size_t requests = 1;  // the requests a test expects to fail before it ends
  ::quillet::testing::TempDir dir_;
  std::shared_ptr<platform::FileSystem> fileSystem_;
  platform::UserDefaults defaults_;
  std::shared_ptr<platform::ManualClock> clock_;
  std::shared_ptr<platform::RunLoop> loop_;
  std::shared_ptr<platform::Application> app_;
  std::vector<std::string> toasts;
};

}  // namespace quillet::news::testing
