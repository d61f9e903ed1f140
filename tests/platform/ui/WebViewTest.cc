// The web view's script responder and its weak delegate, and the spinner.
// (Loads, navigations and pages are in WebViewPageTest.)
#include <gtest/gtest.h>

#include "platform/ui/ActivityIndicator.h"
#include "platform/ui/WebView.h"

namespace quillet::platform {
namespace {

TEST(WebViewTest, AResponderAnswersScriptsAndTheDelegateIsHeldWeakly) {
  auto web = std::make_shared<WebView>("webView");
  EXPECT_EQ(web->stringByEvaluatingJavaScriptFromString("player.getDuration();"), "");
  web->setScriptResponder([](const std::string& script) { return script == "player.getDuration();" ? "42" : ""; });
  EXPECT_EQ(web->stringByEvaluatingJavaScriptFromString("player.getDuration();"), "42");
  EXPECT_EQ(web->evaluatedScripts().size(), 2u);

  auto delegate = std::make_shared<WebViewDelegate>();
  web->setDelegate(delegate);
  delegate.reset();  // loads go on without a delegate
  web->loadHTMLString("<html>%</html>", "about:blank");
  EXPECT_EQ(web->url(), "about:blank");
  EXPECT_EQ(web->html(), "<html>%</html>");

  ActivityIndicator spinner;
  EXPECT_TRUE(spinner.isHidden());
  spinner.startAnimating();
  EXPECT_FALSE(spinner.isHidden());
}

}  // namespace
}  // namespace quillet::platform
