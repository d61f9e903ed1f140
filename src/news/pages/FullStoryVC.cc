#include "news/pages/FullStoryVC.h"

#include "platform/log/Log.h"
#include "platform/ui/NavigationController.h"
#include "platform/value/Format.h"

namespace quillet::news {

FullStoryVC::FullStoryVC() : ViewController("FullStoryVC") {
  webView_ = std::make_shared<platform::WebView>("webView");
  btnBack_ = std::make_shared<platform::Button>("btnBack");
  btnBack_->setTitle("Back");
  btnBack_->setAction([this](platform::Button&) { btnBackTapped(); });
  registerOutlet("webView", webView_);
  registerOutlet("btnBack", btnBack_);
}

void FullStoryVC::viewDidLoad() {
  HUD_ = std::make_shared<platform::ProgressHUD>(view());
  registerOutlet("HUD", HUD_);  // over the view: the last subview
  HUD_->setLabelText(kLoadingText);
  webView_->setDelegate(
      std::shared_ptr<platform::WebViewDelegate>(shared_from_this(), static_cast<platform::WebViewDelegate*>(this)));
  webView_->loadRequest(strURL_);
  HUD_->show(true);
}

void FullStoryVC::webViewDidFinishLoad(platform::WebView&) {
  platform::Log::write("complete");
  if (HUD_) HUD_->hide(true);
}

void FullStoryVC::webViewDidFailLoad(platform::WebView&, const platform::Error& error) {
  platform::Log::write(platform::format("Failed to load with error :%@", error.description()));
  if (HUD_) HUD_->hide(true);
}

void FullStoryVC::btnBackTapped() {
  if (auto navigation = navigationController()) navigation->popViewControllerAnimated(true);
}

void FullStoryVC::safariViewControllerDidFinish() { dismissViewControllerAnimated(true); }

}  // namespace quillet::news
