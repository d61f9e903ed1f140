#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "news/player/InlinePlayerTypes.h"
#include "news/player/InlinePlayerViewDelegate.h"
#include "platform/ui/View.h"
#include "platform/ui/WebView.h"
#include "platform/value/Value.h"

namespace quillet::news {

// The card's inline player for videos of the video site. Each load makes a
// new web view showing the player's page template, filled with the
// parameters as JSON. Commands go to the page as scripts; the page's events
// come back as navigations to the "inlineplayer" scheme, which this view,
// as the web view's delegate, catches and hands to its delegate. Other
// navigations stay in the web view only for the player's own pages; the
// rest go to the system (Application::openURL).
//
// Made with std::make_shared like every view (the web view holds it weakly
// as its delegate). Without a load there is no web view, and commands do
// nothing and queries read "". The delegate is held weakly: its owner keeps
// it alive. Main run loop thread only.
class InlinePlayerView : public platform::View, public platform::WebViewDelegate {
 public:
  // The stand-in host of the video site, as the card's short-link host.
  static constexpr const char* kVideoSiteHost = "video.quillet.test";
  static constexpr const char* kCallbackScheme = "inlineplayer";

  using View::View;

  void setDelegate(std::weak_ptr<InlinePlayerViewDelegate> delegate) { delegate_ = std::move(delegate); }
  // Where the page template is read from; empty (the default) = the app's
  // resource directory (FileSystem::standard()).
  void setResourceDirectory(std::filesystem::path directory) { resourceDirectory_ = std::move(directory); }

  // Loading. Each returns false (with a log line) when the page cannot be
  // made: no template, or player vars that JSON cannot carry.
  bool loadWithVideoId(const std::string& videoId);
  // With nil vars, an empty dictionary. The id goes in as it stands, also when empty.
  bool loadWithVideoId(const std::string& videoId, const platform::Value& playerVars);
  bool loadWithPlaylistId(const std::string& playlistId);
  bool loadWithPlaylistId(const std::string& playlistId, const platform::Value& playerVars);
  bool loadWithPlayerParams(const platform::Value& additionalPlayerParams);

  // Commands: each sends its script. pauseVideo reports Paused to the
  // delegate first; the others wait for the page's own event.
  void playVideo();
  void pauseVideo();
  void stopVideo();
  void seekToSeconds(double seconds, bool allowSeekAhead);
  void cueVideoById(const std::string& videoId, double startSeconds, PlaybackQuality suggestedQuality);
  void cueVideoById(const std::string& videoId, double startSeconds, double endSeconds,
                    PlaybackQuality suggestedQuality);
  void loadVideoById(const std::string& videoId, double startSeconds, PlaybackQuality suggestedQuality);
  void loadVideoById(const std::string& videoId, double startSeconds, double endSeconds,
                     PlaybackQuality suggestedQuality);
  void cueVideoByURL(const std::string& videoURL, double startSeconds, PlaybackQuality suggestedQuality);
  void cueVideoByURL(const std::string& videoURL, double startSeconds, double endSeconds,
                     PlaybackQuality suggestedQuality);
  void loadVideoByURL(const std::string& videoURL, double startSeconds, PlaybackQuality suggestedQuality);
  void loadVideoByURL(const std::string& videoURL, double startSeconds, double endSeconds,
                      PlaybackQuality suggestedQuality);
  // `playlist` is the list as a script takes it: "'<playlist id>'" or stringFromVideoIdArray(ids).
  void cuePlaylist(const std::string& playlist, int index, double startSeconds, PlaybackQuality suggestedQuality);
  void loadPlaylist(const std::string& playlist, int index, double startSeconds, PlaybackQuality suggestedQuality);
  void cuePlaylistByPlaylistId(const std::string& playlistId, int index, double startSeconds,
                               PlaybackQuality suggestedQuality);
  void cuePlaylistByVideos(const std::vector<std::string>& videoIds, int index, double startSeconds,
                           PlaybackQuality suggestedQuality);
  void loadPlaylistByPlaylistId(const std::string& playlistId, int index, double startSeconds,
                                PlaybackQuality suggestedQuality);
  void loadPlaylistByVideos(const std::vector<std::string>& videoIds, int index, double startSeconds,
                            PlaybackQuality suggestedQuality);
  void setPlaybackRate(float suggestedRate);
  void setLoop(bool loop);
  void setShuffle(bool shuffle);
  void setPlaybackQuality(PlaybackQuality suggestedQuality);
  void playVideoAt(int index);
  void nextVideo();
  void previousVideo();

  // Queries, read from the page's text answers.
  float playbackRate();
  platform::Value availablePlaybackRates();  // an array, or nil when the answer is no JSON array
  float videoLoadedFraction();
  PlayerState playerState();
  float currentTime();
  PlaybackQuality playbackQuality();
  double duration();
  std::string videoUrl();
  std::string videoEmbedCode();
  platform::Value playlist();  // an array, or nil
  int playlistIndex();
  std::vector<PlaybackQuality> availableQualityLevels();  // the answer split at ","; "" gives none

  // "['a', 'b']": the ids as a script takes them.
  static std::string stringFromVideoIdArray(const std::vector<std::string>& videoIds);

  // An event URL of the page: the host names the event, the text behind
  // the "=" of the query is its data (nil without one).
  void notifyDelegateOfCallbackUrl(const std::string& url);
  // True for the player's own pages (five patterns); any other URL is
  // opened by the system, and false.
  bool handleHttpNavigationToUrl(const std::string& url);

  // The navigation policy and the failed load, as the web view's delegate.
  bool webViewShouldStartLoad(platform::WebView& webView, const std::string& url,
                              platform::WebNavigationType type) override;
  void webViewDidFailLoad(platform::WebView& webView, const platform::Error& error) override;

  const std::shared_ptr<platform::WebView>& webView() const { return webView_; }
  const std::string& originURL() const { return originURL_; }
  const std::shared_ptr<platform::View>& initialLoadingView() const { return initialLoadingView_; }
  // The id of the last loadWithVideoId, as the card asked for it.
  const std::string& videoId() const { return videoId_; }

  // What the page has reported since the last load, kept whether or not a
  // delegate listens (the card gives none), for those who watch the phone.
  struct Reported {
    bool ready = false;
    PlayerState state = PlayerState::Unstarted;
    PlaybackQuality quality = PlaybackQuality::Unknown;
    std::optional<PlayerError> error;
    float playTime = 0;
  };
  const Reported& reported() const { return reported_; }

  std::string kind() const override { return "inlinePlayer"; }

 protected:
  void layoutSubviews() override;
  void describeState(platform::Value& into) const override;

 private:
  std::string stringFromEvaluatingJavaScript(const std::string& script);
  void runScript(const std::string& script) { stringFromEvaluatingJavaScript(script); }
  void makeWebView();
  void removeInitialLoadingView();
  platform::Rect bounds() const;

  std::weak_ptr<InlinePlayerViewDelegate> delegate_;
  std::shared_ptr<platform::WebView> webView_;
  std::string originURL_;
  std::shared_ptr<platform::View> initialLoadingView_;
  std::filesystem::path resourceDirectory_;
  std::string videoId_;
  Reported reported_;
};

}  // namespace quillet::news
