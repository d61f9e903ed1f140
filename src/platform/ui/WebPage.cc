#include "platform/ui/WebPage.h"

#include "platform/dispatch/DispatchQueue.h"
#include "platform/ui/WebView.h"

namespace quillet::platform {

std::string WebPage::evaluate(const std::string& script) {
  scripts_.push_back(script);
  return run(script);
}

std::string WebPage::run(const std::string&) { return ""; }

std::shared_ptr<WebView> WebPage::webView() const {
  auto view = std::static_pointer_cast<WebView>(view_.lock());
  if (!view || view->page().get() != this) return nullptr;
  return view;
}

void WebPage::navigate(std::string url, WebNavigationType type) {
  std::weak_ptr<WebPage> weak = weak_from_this();
  DispatchQueue::main()->async([weak, url = std::move(url), type] {
    auto page = weak.lock();
    if (!page) return;
    if (auto view = page->webView()) view->navigate(url, type);
  });
}

}  // namespace quillet::platform
