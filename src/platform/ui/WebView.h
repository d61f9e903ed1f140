#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/ui/View.h"
#include "platform/ui/WebPage.h"
#include "platform/ui/WebViewDelegate.h"

namespace quillet::platform {

class HttpTask;

// A web view without a page engine. It loads a URL over HTTP (one
// process-wide session) or takes an HTML text with a base URL, and reports
// the outcome to its delegate on the main queue, as the phone's web view
// does; an "about:" URL loads as an empty page and any scheme but http and
// https fails as an unsupported URL. A load is asked of the delegate first.
// What was loaded becomes a WebPage, made by the view's page factory (else
// the process-wide one, else the plain page), which runs the scripts handed
// to the view and may navigate it. A newer load, or the view's end, cancels
// a fetch in flight and drops its outcome.
//
// finishLoad and failLoad remain for a driver that plays the page itself.
// The delegate is held weakly: the owner (a screen or a player view) keeps
// it alive. Main run loop thread only.
class WebView : public View {
 public:
  using ScriptResponder = std::function<std::string(const std::string& script)>;
  using View::View;
  ~WebView() override;

  void setDelegate(std::weak_ptr<WebViewDelegate> delegate) { delegate_ = std::move(delegate); }

  // Asks the delegate with navigation type Other; when allowed, the URL is
  // the page now loading, the delegate hears that the load started, and the
  // page is fetched: any answer (also a 404 page) finishes the load with its
  // text as html() and the answering URL as url(); a transport failure
  // fails it with the session's error.
  void loadRequest(const std::string& url);
  // The same for an HTML text; the delegate is asked about `baseURL`, and
  // the load finishes on the main queue.
  void loadHTMLString(const std::string& html, const std::string& baseURL);
  // A navigation from within the page (a link, a script setting the
  // location): asks the delegate and, when allowed, loads the URL as
  // loadRequest does. Returns whether the delegate let it load.
  bool navigate(const std::string& url, WebNavigationType type = WebNavigationType::LinkClicked);
  // The page on show finished loading (the delegate hears, then the page),
  // or failed to.
  void finishLoad();
  void failLoad(const Error& error);

  // Hands the script to the page (or to the responder, when one is set) and
  // returns its text result; "" before any load. Every script is recorded.
  std::string stringByEvaluatingJavaScriptFromString(const std::string& script);
  void setScriptResponder(ScriptResponder responder) { responder_ = std::move(responder); }

  // The factory for this view's pages; empty = the process-wide one.
  void setPageFactory(WebPageFactory factory) { pageFactory_ = std::move(factory); }
  // The process-wide page factory; empty = the plain page. Main thread only.
  static void setDefaultPageFactory(WebPageFactory factory);
  // The page on show (null before any load).
  const std::shared_ptr<WebPage>& page() const { return page_; }

  // The first web view in `root`'s tree (itself included), depth first; null when none.
  static std::shared_ptr<WebView> firstIn(const std::shared_ptr<View>& root);

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
  void fetch(const std::string& url);
  void showPage(const std::string& url, std::string html);
  // Finishes the current load on the main queue unless a newer one began.
  void finishSoon();

  std::weak_ptr<WebViewDelegate> delegate_;
  ScriptResponder responder_;
  WebPageFactory pageFactory_;
  std::shared_ptr<WebPage> page_;
  std::shared_ptr<HttpTask> task_;
  uint64_t generation_ = 0;  // counts loads, so a late outcome of an old one is dropped
  std::string url_;
  std::string html_;
  bool loading_ = false;
  std::vector<std::string> scripts_;
};

}  // namespace quillet::platform
