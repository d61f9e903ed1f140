#pragma once

#include <memory>
#include <string>

#include "news/app/StoryLinkReceiver.h"
#include "platform/ui/Button.h"
#include "platform/ui/ProgressHUD.h"
#include "platform/ui/ViewController.h"
#include "platform/ui/WebView.h"
#include "platform/ui/WebViewDelegate.h"

namespace quillet::news {

// A story's source page in a web view, pushed by the feed after it was
// given the link with setStrURL. At load it lays a progress overlay
// "Loading....." over its view, loads the link and shows the overlay; the
// first finished or failed load hides it (a failure only logs: the reader
// sees a blank page). Back pops the screen.
//
// Outlets: "webView" (the page asked for), "HUD" (the overlay, from load
// on), "btnBack".
//
// Made with std::make_shared (the storyboard does); it is the web view's
// delegate, held weakly by the web view. Main thread only.
class FullStoryVC : public platform::ViewController, public platform::WebViewDelegate, public StoryLinkReceiver {
 public:
  static constexpr const char* kLoadingText = "Loading.....";
  // The light status bar.
  static constexpr int kStatusBarStyleLight = 1;

  FullStoryVC();

  // StoryLinkReceiver.
  void setStrURL(std::string url) override { strURL_ = std::move(url); }
  const std::string& strURL() const { return strURL_; }

  void btnBackTapped();
  // The system's browser screen was closed: dismisses what this screen
  // presents. Nothing here opens that browser; the callback is kept for it.
  void safariViewControllerDidFinish();
  int preferredStatusBarStyle() const { return kStatusBarStyleLight; }

  // WebViewDelegate.
  void webViewDidFinishLoad(platform::WebView& webView) override;
  void webViewDidFailLoad(platform::WebView& webView, const platform::Error& error) override;

  const std::shared_ptr<platform::WebView>& webView() const { return webView_; }
  // Null before the screen has loaded.
  const std::shared_ptr<platform::ProgressHUD>& HUD() const { return HUD_; }

 protected:
  void viewDidLoad() override;

 private:
  std::shared_ptr<platform::WebView> webView_;
  std::shared_ptr<platform::Button> btnBack_;
  std::shared_ptr<platform::ProgressHUD> HUD_;
  std::string strURL_;
};

}  // namespace quillet::news
