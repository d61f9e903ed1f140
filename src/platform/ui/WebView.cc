#include "platform/ui/WebView.h"

#include "platform/dispatch/DispatchQueue.h"
#include "platform/net/HttpSession.h"
#include "platform/text/Url.h"

namespace quillet::platform {
namespace {

// One session for every web view, never destroyed: its thread may still
// deliver while the process ends.
HttpSession& pageSession() {
  static auto* session = new HttpSession();
  return *session;
}

WebPageFactory& defaultPageFactory() {
  static auto* factory = new WebPageFactory();
  return *factory;
}

Error unsupportedURL(const std::string& url) {
  return Error("NSURLErrorDomain", -1002,
               Value::dictionary(
                   {{"NSLocalizedDescription", Value("unsupported URL")}, {"NSErrorFailingURLStringKey", Value(url)}}));
}

}  // namespace

WebView::~WebView() {
  if (task_) task_->cancel();
}

void WebView::setDefaultPageFactory(WebPageFactory factory) { defaultPageFactory() = std::move(factory); }

bool WebView::startLoad(const std::string& url, WebNavigationType type) {
  auto keepAlive = weak_from_this().lock();
  if (auto delegate = delegate_.lock()) {
    if (!delegate->webViewShouldStartLoad(*this, url, type)) return false;
  }
  if (task_) task_->cancel();
  task_.reset();
  ++generation_;
  url_ = url;
  html_.clear();
  loading_ = true;
  if (page_) page_->view_.reset();
  page_.reset();
  if (auto delegate = delegate_.lock()) delegate->webViewDidStartLoad(*this);
  return true;
}

void WebView::loadRequest(const std::string& url) {
  if (startLoad(url, WebNavigationType::Other)) fetch(url);
}

void WebView::loadHTMLString(const std::string& html, const std::string& baseURL) {
  if (!startLoad(baseURL, WebNavigationType::Other)) return;
  showPage(baseURL, html);
  finishSoon();
}

bool WebView::navigate(const std::string& url, WebNavigationType type) {
  if (!startLoad(url, type)) return false;
  fetch(url);
  return true;
}

void WebView::fetch(const std::string& url) {
  auto parsed = Url::parse(url);
  std::string scheme = parsed ? parsed->scheme() : "";
  if (scheme == "about") {
    showPage(url, "");
    finishSoon();
    return;
  }
  std::weak_ptr<View> weak = weak_from_this();
  uint64_t generation = generation_;
  if (scheme != "http" && scheme != "https") {
    DispatchQueue::main()->async([weak, generation, error = unsupportedURL(url)] {
      auto view = std::static_pointer_cast<WebView>(weak.lock());
      if (view && view->generation_ == generation && view->loading_) view->failLoad(error);
    });
    return;
  }
  task_ =
      pageSession().start(HttpRequest(url), DispatchQueue::main(),
                          [weak, generation](std::optional<HttpResponse> response, std::optional<Error> error) {
                            auto view = std::static_pointer_cast<WebView>(weak.lock());
                            if (!view || view->generation_ != generation || !view->loading_) return;
                            view->task_.reset();
                            if (error || !response) {
                              view->failLoad(error.value_or(Error("NSURLErrorDomain", -1)));
                              return;
                            }
                            view->showPage(response->url.empty() ? view->url_ : response->url, response->bodyString());
                            view->finishLoad();
                          });
}

void WebView::showPage(const std::string& url, std::string html) {
  url_ = url;
  html_ = std::move(html);
  const WebPageFactory& factory = pageFactory_ ? pageFactory_ : defaultPageFactory();
  std::shared_ptr<WebPage> page = factory ? factory(WebPageSource{url_, html_}) : nullptr;
  page_ = page ? std::move(page) : std::make_shared<WebPage>();
  page_->view_ = weak_from_this();
}

void WebView::finishSoon() {
  std::weak_ptr<View> weak = weak_from_this();
  uint64_t generation = generation_;
  DispatchQueue::main()->async([weak, generation] {
    auto view = std::static_pointer_cast<WebView>(weak.lock());
    if (view && view->generation_ == generation && view->loading_) view->finishLoad();
  });
}

void WebView::finishLoad() {
  auto keepAlive = weak_from_this().lock();
  loading_ = false;
  if (auto delegate = delegate_.lock()) delegate->webViewDidFinishLoad(*this);
  if (auto page = page_) page->didFinishLoad();
}

void WebView::failLoad(const Error& error) {
  auto keepAlive = weak_from_this().lock();
  loading_ = false;
  if (auto delegate = delegate_.lock()) delegate->webViewDidFailLoad(*this, error);
}

std::string WebView::stringByEvaluatingJavaScriptFromString(const std::string& script) {
  scripts_.push_back(script);
  if (responder_) {
    auto responder = responder_;
    return responder(script);
  }
  auto page = page_;
  return page ? page->evaluate(script) : "";
}

std::shared_ptr<WebView> WebView::firstIn(const std::shared_ptr<View>& root) {
  if (!root) return nullptr;
  if (auto web = std::dynamic_pointer_cast<WebView>(root)) return web;
  for (const auto& child : root->subviews()) {
    if (auto web = firstIn(child)) return web;
  }
  return nullptr;
}

void WebView::describeState(Value& into) const {
  into.set("url", Value(url_));
  if (!html_.empty()) into.set("htmlLength", Value(static_cast<int64_t>(html_.size())));
  into.set("loading", Value(loading_));
}

}  // namespace quillet::platform
