#pragma once

#include <string>

#include "platform/ui/View.h"
#include "platform/value/Value.h"

namespace quillet::news {

// The card's inline player for videos of the video site. The card uses two
// operations: load a video by id with player settings, and stop. This view
// keeps what it was asked to play and whether it plays; the page that plays
// it comes with the content pages. Main thread only.
class InlinePlayerView : public platform::View {
 public:
  using View::View;

  // Loads the video (also an empty id) with `playerVars`, such as {"playsinline": 1}.
  bool loadWithVideoId(const std::string& videoId, const platform::Value& playerVars);
  void stopVideo();

  const std::string& videoId() const { return videoId_; }
  const platform::Value& playerVars() const { return playerVars_; }
  int loadCount() const { return loadCount_; }
  int stopCount() const { return stopCount_; }

  std::string kind() const override { return "inlinePlayer"; }

 protected:
  void describeState(platform::Value& into) const override;

 private:
  std::string videoId_;
  platform::Value playerVars_;
  int loadCount_ = 0;
  int stopCount_ = 0;
};

}  // namespace quillet::news
