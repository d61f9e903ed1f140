#pragma once

#include <memory>
#include <optional>

#include "news/player/InlinePlayerTypes.h"
#include "platform/ui/Color.h"
#include "platform/ui/View.h"

namespace quillet::news {

class InlinePlayerView;

// What the player view tells its delegate, and what it may ask of it. Every
// operation is optional: the defaults do nothing, offer no colour and no
// loading view. Called on the main run loop thread.
class InlinePlayerViewDelegate {
 public:
  virtual ~InlinePlayerViewDelegate() = default;
  virtual void playerViewDidBecomeReady(InlinePlayerView&) {}
  virtual void playerViewDidChangeToState(InlinePlayerView&, PlayerState) {}
  virtual void playerViewDidChangeToQuality(InlinePlayerView&, PlaybackQuality) {}
  virtual void playerViewReceivedError(InlinePlayerView&, PlayerError) {}
  virtual void playerViewDidPlayTime(InlinePlayerView&, float /*playTime*/) {}
  // The web view's background colour; a clear colour makes it non-opaque.
  virtual std::optional<platform::Color> playerViewPreferredWebViewBackgroundColor(InlinePlayerView&) {
    return std::nullopt;
  }
  // A view shown over the page from each load until the player is ready or the load fails.
  virtual std::shared_ptr<platform::View> playerViewPreferredInitialLoadingView(InlinePlayerView&) { return nullptr; }
};

}  // namespace quillet::news
