// Webmanager against the stand-in news server on loopback, with a ManualClock
// main loop (replies arrive as posted work; the loop waits for them in real time).
#include <gtest/gtest.h>

#include <memory>

#include "backend/news/NewsServer.h"
#include "news/api/Webmanager.h"
#include "platform/reachability/ReachabilitySource.h"
#include "platform/runloop/RunLoop.h"
#include "platform/ui/AlertController.h"
#include "platform/ui/Application.h"
#include "support/LogCapture.h"
#include "support/TempDir.h"

namespace quillet::news {
namespace {

using platform::Value;

class WebmanagerTest : public ::testing::Test {
 protected:
  // One server for the suite: stopping it waits out the server's keep-alive
  // period for the connection the client pools, so it is done once.
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
    server_->clearFaults();
    app_.window().setRootViewController(std::make_shared<platform::ViewController>("HomeVC"));
    app_.window().makeKeyAndVisible();
    platform::ReachabilitySource::setOverride(platform::ReachabilityOverride::WiFi);
    delegate_ = std::make_shared<WebmanagerDelegate>();
    delegate_->setOperation("showNewsSuccess", [this](const Value& reply) { record("success", reply); });
    delegate_->setOperation("showNewsFail", [this](const Value& reply) { record("fail", reply); });
  }
  void TearDown() override {
    platform::ReachabilitySource::setOverride(platform::ReachabilityOverride::Automatic);
    platform::RunLoop::setMain(nullptr);
  }

  void record(const std::string& which, const Value& reply) {
    EXPECT_TRUE(loop_->isCurrent());
    calls_.push_back(which);
    reply_ = reply;
  }

  // Sends "showNews"; the test keeps no reference to the delegate, the request does.
  void sendShowNews() {
    Webmanager(server_->apiUrl(), &app_)
        .sendRequestWithUrl("showNews", Value::dictionary({{"category_id", ""}}), std::move(delegate_),
                            "showNewsSuccess", "showNewsFail");
  }
  bool waitFor(const std::function<bool()>& done) { return loop_->runUntil(done, 10.0); }

  ::quillet::testing::LogCapture log_;
  static inline ::quillet::testing::TempDir* dir_ = nullptr;
  static inline backend::NewsServer* server_ = nullptr;
  std::shared_ptr<platform::RunLoop> loop_ =
      std::make_shared<platform::RunLoop>(std::make_shared<platform::ManualClock>());
  platform::Application app_{std::make_shared<platform::UiEvents>()};
  std::shared_ptr<WebmanagerDelegate> delegate_;
  std::vector<std::string> calls_;
  Value reply_;
};

TEST_F(WebmanagerTest, NoNetworkShowsTheAlertAndCallsNothingBack) {
  platform::ReachabilitySource::setOverride(platform::ReachabilityOverride::None);
  sendShowNews();
  auto alert = std::dynamic_pointer_cast<platform::AlertController>(app_.window().visibleAlert());
  ASSERT_TRUE(alert);
  EXPECT_EQ(alert->title(), "");
  EXPECT_EQ(alert->message(), "No Internet Connection Found");
  ASSERT_EQ(alert->actions().size(), 1u);
  EXPECT_EQ(alert->actions()[0].title, "OK");
  loop_->runUntil([] { return false; }, 0.2);
  EXPECT_TRUE(calls_.empty());
}

TEST_F(WebmanagerTest, AGoodReplyCallsTheSuccessOperationWithTheDecodedBody) {
  sendShowNews();
  ASSERT_TRUE(waitFor([&] { return !calls_.empty(); }));
  EXPECT_EQ(calls_, std::vector<std::string>{"success"});
  EXPECT_TRUE(reply_["status"].boolValue());
  EXPECT_GT(reply_["result"].count(), 0u);
  EXPECT_TRUE(log_.contains("-----------"));
}

TEST_F(WebmanagerTest, StatusFalseGivesTheBodyAndHtmlGivesNilToTheFailureOperation) {
  server_->setFault("showNews", backend::NewsFault{backend::NewsFault::Kind::StatusFalse});
  sendShowNews();
  ASSERT_TRUE(waitFor([&] { return !calls_.empty(); }));
  EXPECT_EQ(calls_, std::vector<std::string>{"fail"});
  EXPECT_TRUE(reply_.isDictionary());
  EXPECT_FALSE(reply_["status"].boolValue());

  calls_.clear();
  server_->setFault("showNews", backend::NewsFault{backend::NewsFault::Kind::HtmlBody});
  delegate_ = std::make_shared<WebmanagerDelegate>();
  delegate_->setOperation("showNewsFail", [this](const Value& reply) { record("fail", reply); });
  sendShowNews();
  ASSERT_TRUE(waitFor([&] { return !calls_.empty(); }));
  EXPECT_EQ(calls_, std::vector<std::string>{"fail"});
  EXPECT_TRUE(reply_.isNil());
  EXPECT_TRUE(log_.contains("(null)-----------"));
}

TEST_F(WebmanagerTest, ATransportFailureIsOnlyLogged) {
  server_->setFault("showNews", backend::NewsFault{backend::NewsFault::Kind::NotFound});
  sendShowNews();
  ASSERT_TRUE(waitFor([&] { return log_.contains("Error: "); }));
  loop_->runUntil([] { return false; }, 0.1);
  EXPECT_TRUE(calls_.empty());
}

TEST_F(WebmanagerTest, AbsentOperationsDropTheReplyAndNilParametersSendNoQuery) {
  const size_t before = server_->store()->recordedRequests().size();
  Webmanager(server_->apiUrl().substr(0, server_->apiUrl().size() - 1), &app_)
      .sendRequestWithUrl("getMostPopularNews", Value(), delegate_, std::nullopt, std::nullopt);
  ASSERT_TRUE(waitFor([&] { return log_.contains("-----------"); })) << ::testing::PrintToString(log_.messages());
  EXPECT_TRUE(calls_.empty());
  auto requests = server_->store()->recordedRequests();
  ASSERT_EQ(requests.size(), before + 1);
  EXPECT_EQ(requests.back().method, "GET");
  EXPECT_EQ(requests.back().path, "/newsapp/api/getMostPopularNews");
  EXPECT_EQ(requests.back().query, "");
}

}  // namespace
}  // namespace quillet::news
