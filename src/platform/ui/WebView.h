#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/ui/View.h"
#include "platform/ui/WebViewDelegate.h"

namespace quillet::platform {

// A web view without a page engine: it records what it was asked to load
// (a URL, or an HTML text with a base URL) and the scripts it was asked to
// run, asks its delegate before every navigation, and reports finished and
// failed loads when the driver (or a test) says so. A script's result comes
// from a settable responder, standing in for the page.
//
// The delegate is held weakly: the owner (a screen or a player view) keeps
// it alive. Main run loop thread only.
class WebView : public View {
 public:
  using ScriptResponder = std::function<std::string(const std::string& script)>;
  using View::View;

  void setDelegate(std::weak_ptr<WebViewDelegate> delegate) { delegate_ = std::move(delegate); }

  // Asks the delegate with navigation type Other; when allowed, the URL is
  // the page now loading, and the delegate hears that the load started.
  void loadRequest(const std::string& url);
  // The same for an HTML text; the delegate is asked about `baseURL`.
  void loadHTMLString(const std::string& html, const std::string& baseURL);
  // A navigation from within the page (a link, a script setting the
  // location); returns whether the delegate let it load.
  bool navigate(const std::string& url, WebNavigationType type = WebNavigationType::LinkClicked);
  // The page on show finished loading, or failed to.
  void finishLoad();
  void failLoad(const Error& error);

  // Records the script and returns the responder's answer ("" without one).
  std::string stringByEvaluatingJavaScriptFromString(const std::string& script);
  void setScriptResponder(ScriptResponder responder) { responder_ = std::move(responder); }

  const std::string& url() const { return url_; }
  const std::string& html() const { return html_; }
  bool isLoading() const { return loading_; }
  const std::vector<std::string>& evaluatedScripts() const { return scripts_; }

  bool allowsInlineMediaPlayback = false;
  bool mediaPlaybackRequiresUserAction = true;
  bool scrollEnabled = true;
  bool bounces = true;
  bool opaque = true;

  std::string kind() const override { return "webView"; }

 protected:
  void describeState(Value& into) const override;

 private:
  bool startLoad(const std::string& url, WebNavigationType type);

  std::weak_ptr<WebViewDelegate> delegate_;
  ScriptResponder responder_;
  std::string url_;
  std::string html_;
  bool loading_ = false;
  std::vector<std::string> scripts_;
};

}  // namespace quillet::platform
