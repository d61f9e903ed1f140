#include "platform/ui/WebView.h"

namespace quillet::platform {

bool WebView::startLoad(const std::string& url, WebNavigationType type) {
  auto keepAlive = weak_from_this().lock();
  if (auto delegate = delegate_.lock()) {
    if (!delegate->webViewShouldStartLoad(*this, url, type)) return false;
  }
  url_ = url;
  loading_ = true;
  if (auto delegate = delegate_.lock()) delegate->webViewDidStartLoad(*this);
  return true;
}

void WebView::loadRequest(const std::string& url) {
  if (startLoad(url, WebNavigationType::Other)) html_.clear();
}

void WebView::loadHTMLString(const std::string& html, const std::string& baseURL) {
  if (startLoad(baseURL, WebNavigationType::Other)) html_ = html;
}

bool WebView::navigate(const std::string& url, WebNavigationType type) {
  if (!startLoad(url, type)) return false;
  html_.clear();
  return true;
}

void WebView::finishLoad() {
  auto keepAlive = weak_from_this().lock();
  loading_ = false;
  if (auto delegate = delegate_.lock()) delegate->webViewDidFinishLoad(*this);
}

void WebView::failLoad(const Error& error) {
  auto keepAlive = weak_from_this().lock();
  loading_ = false;
  if (auto delegate = delegate_.lock()) delegate->webViewDidFailLoad(*this, error);
}

std::string WebView::stringByEvaluatingJavaScriptFromString(const std::string& script) {
  scripts_.push_back(script);
  if (!responder_) return "";
  auto responder = responder_;
  return responder(script);
}

void WebView::describeState(Value& into) const {
  into.set("url", Value(url_));
  if (!html_.empty()) into.set("htmlLength", Value(static_cast<int64_t>(html_.size())));
  into.set("loading", Value(loading_));
}

}  // namespace quillet::platform
