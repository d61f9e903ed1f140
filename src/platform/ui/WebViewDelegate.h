#pragma once

#include <string>

#include "platform/value/Error.h"

namespace quillet::platform {

class WebView;

enum class WebNavigationType { LinkClicked, FormSubmitted, BackForward, Reload, FormResubmitted, Other };

// The web view's delegate: a navigation policy and the load callbacks, all
// optional (the defaults allow everything and do nothing). Called on the
// main run loop thread.
class WebViewDelegate {
 public:
  virtual ~WebViewDelegate() = default;
  virtual bool webViewShouldStartLoad(WebView&, const std::string& /*url*/, WebNavigationType) { return true; }
  virtual void webViewDidStartLoad(WebView&) {}
  virtual void webViewDidFinishLoad(WebView&) {}
  virtual void webViewDidFailLoad(WebView&, const Error&) {}
};

}  // namespace quillet::platform
