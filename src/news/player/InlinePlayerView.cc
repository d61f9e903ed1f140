#include "news/player/InlinePlayerView.h"

namespace quillet::news {

bool InlinePlayerView::loadWithVideoId(const std::string& videoId, const platform::Value& playerVars) {
  videoId_ = videoId;
  playerVars_ = playerVars;
  ++loadCount_;
  return true;
}

void InlinePlayerView::stopVideo() { ++stopCount_; }

void InlinePlayerView::describeState(platform::Value& into) const {
  into.set("videoId", platform::Value(videoId_));
}

}  // namespace quillet::news
