// Arbitrary text as a navigation of the inline player's web view: the
// policy (the player's own pages, its event scheme, anything else to the
// system) and the event reader behind it. Never crashes; a URL of the event
// scheme is always kept out of the web view (text that is no URL at all
// never reaches a web view, so the policy lets it be).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "news/player/InlinePlayerView.h"
#include "platform/log/Log.h"
#include "platform/runloop/RunLoop.h"
#include "platform/text/Url.h"
#include "platform/ui/Application.h"
#include "platform/ui/WebView.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using quillet::news::InlinePlayerView;
  static const bool ready = [] {
    quillet::platform::Log::setStandardErrorEnabled(false);
    quillet::platform::Application::setSharedApplication(std::make_shared<quillet::platform::Application>());
    return true;
  }();
  (void)ready;
  // A player of its own for each input: what one input leaves in a player
  // would be freed by the next, and the fuzzer's leak check would then run
  // after every input.
  const auto player = std::make_shared<InlinePlayerView>("playerView");
  const auto webView = std::make_shared<quillet::platform::WebView>("webView");
  const std::string url(reinterpret_cast<const char*>(data), size);
  const bool loads = player->webViewShouldStartLoad(*webView, url, quillet::platform::WebNavigationType::Other);
  const auto parsed = quillet::platform::Url::parse(url);
  if (loads && parsed && parsed->scheme() == InlinePlayerView::kCallbackScheme) std::abort();
  player->notifyDelegateOfCallbackUrl(url);
  // What the player posted to the main loop runs now, not piled up for later inputs.
  quillet::platform::RunLoop::main().runPending();
  return 0;
}
