#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/ui/WebViewDelegate.h"

namespace quillet::platform {

class View;
class WebView;

// What a web view loaded: the page's URL (for an HTML text, its base URL)
// and its text.
struct WebPageSource {
  std::string url;
  std::string html;
};

// The document a web view shows, standing in for the page engine: it runs
// the scripts the view hands it and may navigate the view it is in. The
// plain page records each script and answers "". Pages that stand in for
// pages of our own (the inline player's) derive from it.
//
// A page is owned by its web view (one page per load) and knows the view
// weakly; once the view shows another page or is gone, the page's
// navigations are dropped. Main run loop thread only.
class WebPage : public std::enable_shared_from_this<WebPage> {
 public:
  virtual ~WebPage() = default;

  // Runs `script` and returns its result as text; every script is recorded.
  std::string evaluate(const std::string& script);
  const std::vector<std::string>& scripts() const { return scripts_; }

  // The view showing this page, or null.
  std::shared_ptr<WebView> webView() const;

  // Called by the view once the page's load finished, after its delegate heard.
  virtual void didFinishLoad() {}

 protected:
  // What a script gives back; the plain page answers "".
  virtual std::string run(const std::string& script);
  // Sets the page's location, as a page script does: after the running
  // script, on the main queue, the view asks its delegate (with `type`) and
  // loads the URL when allowed. Dropped when the page is no longer on show.
  void navigate(std::string url, WebNavigationType type = WebNavigationType::Other);

 private:
  friend class WebView;
  std::weak_ptr<View> view_;
  std::vector<std::string> scripts_;
};

// Makes the page for what a web view loaded; may return null for "the plain page".
using WebPageFactory = std::function<std::shared_ptr<WebPage>(const WebPageSource& source)>;

}  // namespace quillet::platform
