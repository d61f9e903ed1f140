#include <gtest/gtest.h>

#include "platform/ui/ActivityIndicator.h"
#include "platform/ui/WebView.h"

namespace quillet::platform {
namespace {

class Player : public WebViewDelegate {
 public:
  std::vector<std::string> calls;
  bool webViewShouldStartLoad(WebView&, const std::string& url, WebNavigationType) override {
    calls.push_back("should:" + url);
    return url.rfind("inlineplayer:", 0) != 0;  // events are caught, never loaded
  }
  void webViewDidFinishLoad(WebView&) override { calls.push_back("finish"); }
  void webViewDidFailLoad(WebView&, const Error& error) override { calls.push_back("fail:" + error.domain); }
};

TEST(WebViewTest, AsksTheDelegateAndAnswersScriptsFromTheResponder) {
  auto player = std::make_shared<Player>();
  auto web = std::make_shared<WebView>("webView");
  web->setDelegate(player);
  web->loadHTMLString("<html>%</html>", "about:blank");
  EXPECT_EQ(web->url(), "about:blank");
  EXPECT_TRUE(web->isLoading());
  web->finishLoad();
  EXPECT_FALSE(web->navigate("inlineplayer://onStateChange?data=1"));
  EXPECT_EQ(web->url(), "about:blank");
  EXPECT_EQ(web->html(), "<html>%</html>");
  web->failLoad(Error("test", 1));
  EXPECT_EQ(player->calls, (std::vector<std::string>{"should:about:blank", "finish",
                                                     "should:inlineplayer://onStateChange?data=1", "fail:test"}));

  EXPECT_EQ(web->stringByEvaluatingJavaScriptFromString("player.getDuration();"), "");
  web->setScriptResponder([](const std::string& script) { return script == "player.getDuration();" ? "42" : ""; });
  EXPECT_EQ(web->stringByEvaluatingJavaScriptFromString("player.getDuration();"), "42");
  EXPECT_EQ(web->evaluatedScripts().size(), 2u);

  player.reset();  // held weakly: loads go on without a delegate
  web->loadRequest("https://example.test/story");
  EXPECT_EQ(web->url(), "https://example.test/story");
  EXPECT_TRUE(web->html().empty());

  ActivityIndicator spinner;
  EXPECT_TRUE(spinner.isHidden());
  spinner.startAnimating();
  EXPECT_FALSE(spinner.isHidden());
}

}  // namespace
}  // namespace quillet::platform
