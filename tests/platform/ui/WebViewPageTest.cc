#include <gtest/gtest.h>

#include "platform/net/LocalServer.h"
#include "platform/runloop/RunLoop.h"
#include "platform/ui/WebView.h"

namespace quillet::platform {
namespace {

class Recorder : public WebViewDelegate {
 public:
  std::vector<std::string> calls;
  bool refuseEvents = true;
  bool webViewShouldStartLoad(WebView&, const std::string& url, WebNavigationType type) override {
    calls.push_back(std::string(type == WebNavigationType::Other ? "other:" : "link:") + url);
    return !(refuseEvents && url.rfind("event:", 0) == 0);
  }
  void webViewDidFinishLoad(WebView&) override { calls.push_back("finish"); }
  void webViewDidFailLoad(WebView&, const Error& error) override {
    calls.push_back(std::string("fail:") + error.domain);
  }
};

// A page that answers "pong" to "ping()" and then navigates its view.
class PingPage : public WebPage {
 public:
  std::string run(const std::string& script) override {
    if (script != "ping()") return "";
    navigate("event://pong");
    return "pong";
  }
};

class WebViewPageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    RunLoop::setMain(loop);
    web->setDelegate(recorder);
  }
  void TearDown() override { RunLoop::setMain(nullptr); }
  bool settle() {
    return loop->runUntil([this] { return !web->isLoading(); }, 10.0);
  }

  std::shared_ptr<RunLoop> loop = std::make_shared<RunLoop>(std::make_shared<ManualClock>());
  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
  std::shared_ptr<WebView> web = std::make_shared<WebView>("webView");
};

TEST_F(WebViewPageTest, LoadRequestFetchesThePageAndA404PageStillFinishes) {
  LocalServer server;
  server.server().set_keep_alive_max_count(1);  // no idle connection to wait for at stop
  server.server().Get(
      "/story", [](const httplib::Request&, httplib::Response& res) { res.set_content("<p>story</p>", "text/html"); });
  server.server().Get("/gone", [](const httplib::Request&, httplib::Response& res) {
    res.status = 404;
    res.set_content("<p>not here</p>", "text/html");
  });
  server.start();

  web->loadRequest(server.url("/story"));
  EXPECT_TRUE(web->isLoading());
  ASSERT_TRUE(settle());
  EXPECT_EQ(web->html(), "<p>story</p>");
  EXPECT_EQ(web->url(), server.url("/story"));
  ASSERT_NE(web->page(), nullptr);

  web->loadRequest(server.url("/gone"));
  ASSERT_TRUE(settle());
  EXPECT_EQ(web->html(), "<p>not here</p>");
  EXPECT_EQ(recorder->calls, (std::vector<std::string>{std::string("other:") + server.url("/story"), "finish",
                                                       std::string("other:") + server.url("/gone"), "finish"}));
}

TEST_F(WebViewPageTest, RefusedConnectionFailsAndANewerLoadDropsTheOlderOutcome) {
  LocalServer server;
  server.start();
  std::string closed = server.url("/x");
  server.stop();  // the port now refuses

  web->loadRequest(closed);
  ASSERT_TRUE(settle());
  ASSERT_EQ(recorder->calls.size(), 2u);
  EXPECT_EQ(recorder->calls[1].rfind("fail:", 0), 0u);

  recorder->calls.clear();
  web->loadRequest(closed);
  web->loadHTMLString("<b>now</b>", "about:blank");  // replaces the fetch in flight
  ASSERT_TRUE(settle());
  EXPECT_EQ(recorder->calls, (std::vector<std::string>{std::string("other:") + closed, "other:about:blank", "finish"}));
  EXPECT_EQ(web->html(), "<b>now</b>");

  recorder->calls.clear();
  web->loadRequest("ftp://127.0.0.1/file");
  ASSERT_TRUE(settle());
  EXPECT_EQ(recorder->calls.back(), "fail:NSURLErrorDomain");
}

TEST_F(WebViewPageTest, HtmlFinishesLaterAndScriptsReachTheFactoryPage) {
  std::vector<std::string> made;
  web->setPageFactory([&made](const WebPageSource& source) -> std::shared_ptr<WebPage> {
    made.push_back(source.url + " " + source.html);
    if (source.html == "ping") return std::make_shared<PingPage>();
    return nullptr;  // the plain page
  });
  EXPECT_EQ(web->stringByEvaluatingJavaScriptFromString("x()"), "");  // no page yet

  web->loadHTMLString("ping", "http://127.0.0.1:9/base");
  EXPECT_TRUE(web->isLoading());
  EXPECT_EQ(recorder->calls, (std::vector<std::string>{"other:http://127.0.0.1:9/base"}));
  loop->runPending();
  EXPECT_FALSE(web->isLoading());
  EXPECT_EQ(web->url(), "http://127.0.0.1:9/base");

  EXPECT_EQ(web->stringByEvaluatingJavaScriptFromString("ping()"), "pong");
  EXPECT_EQ(recorder->calls.size(), 2u);  // the page's navigation waits for the script to end
  loop->runPending();
  EXPECT_EQ(recorder->calls.back(), "other:event://pong");
  EXPECT_EQ(web->url(), "http://127.0.0.1:9/base");  // refused: the page stays

  // A page that is no longer on show navigates nothing.
  web->stringByEvaluatingJavaScriptFromString("ping()");
  web->loadHTMLString("plain", "about:blank");
  loop->runPending();
  EXPECT_EQ(recorder->calls.back(), "finish");
  EXPECT_EQ(web->stringByEvaluatingJavaScriptFromString("ping()"), "");
  EXPECT_EQ(web->page()->scripts(), (std::vector<std::string>{"ping()"}));
  EXPECT_EQ(made.size(), 2u);

  // An allowed navigation loads: "about:" as an empty page.
  recorder->refuseEvents = false;
  EXPECT_TRUE(web->navigate("about:blank"));
  loop->runPending();
  EXPECT_EQ(recorder->calls.back(), "finish");
  EXPECT_EQ(web->html(), "");
}

}  // namespace
}  // namespace quillet::platform
