#pragma once

#include <memory>
#include <string>
#include <vector>

#include "news/player/InlinePlayerTypes.h"
#include "platform/runloop/TimerQueue.h"
#include "platform/ui/WebPage.h"
#include "platform/value/Value.h"

namespace quillet::platform {
class RunLoop;
}

namespace quillet::news {

// What the player's page template becomes once loaded, standing in for the
// embedded player that a page engine would run. It reads the parameters'
// JSON out of the page, keeps the player's state (video, state, quality,
// time, rate, loop, shuffle, playlist), answers the command and query
// scripts of the player view, and reports events as the template does, by
// navigating to "inlineplayer://<event>?data=<value>":
//   - when the load finished: "onReady?data=null", or, when the page holds
//     no parameters, "onYouTubeIframeAPIFailedToLoad";
//   - each state change: "onStateChange?data=<state text>"; playing an
//     empty video: "onError?data=2"; a new quality: "onPlaybackQualityChange";
//   - every 0.5 s of the main loop's clock while playing: "onPlayTime?data=<seconds>".
// Every video of the video site lasts kVideoSeconds here. Unknown scripts
// answer "". Main run loop thread only.
class InlinePlayerPage : public platform::WebPage {
 public:
  static constexpr double kVideoSeconds = 212;
  static constexpr double kPlayTimeInterval = 0.5;

  explicit InlinePlayerPage(const std::string& html);
  ~InlinePlayerPage() override;

  // The page for a loaded player template; null for any other page.
  static std::shared_ptr<platform::WebPage> make(const platform::WebPageSource& source);

  void didFinishLoad() override;

  const platform::Value& params() const { return params_; }
  PlayerState state() const { return state_; }
  const std::string& videoId() const { return videoId_; }
  double currentTime() const { return time_; }

 protected:
  std::string run(const std::string& script) override;

 private:
  std::string command(const std::string& name, const platform::Value& args);
  std::string query(const std::string& name) const;
  void cue(const std::string& videoId, const platform::Value& startSeconds, const platform::Value& quality);
  void cueList(const platform::Value& list, const platform::Value& index, const platform::Value& startSeconds,
               const platform::Value& quality);
  void moveInList(int64_t index);
  void play();
  void setState(PlayerState state);
  void setQuality(const platform::Value& quality);
  void tick();
  void report(const std::string& event, const std::string& data);
  double duration() const { return videoId_.empty() && videoUrl_.empty() ? 0 : kVideoSeconds; }

  platform::Value params_;
  bool ready_ = false;
  std::string videoId_;
  std::string videoUrl_;
  std::string playlistId_;
  std::vector<std::string> playlist_;
  int64_t playlistIndex_ = 0;
  PlayerState state_ = PlayerState::Unstarted;
  std::string quality_ = "medium";
  double time_ = 0;
  double rate_ = 1;
  bool loop_ = false;
  bool shuffle_ = false;
  std::shared_ptr<platform::RunLoop> timerLoop_;
  platform::TimerId timer_{};
};

}  // namespace quillet::news
