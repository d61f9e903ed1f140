#include "news/player/InlinePlayerView.h"

#include <strings.h>
#include <array>

#include "news/player/InlinePlayerPage.h"
#include "news/player/InlinePlayerTemplate.h"
#include "platform/files/FileSystem.h"
#include "platform/log/Log.h"
#include "platform/text/RegularExpression.h"
#include "platform/text/Url.h"
#include "platform/ui/Application.h"
#include "platform/value/Format.h"
#include "platform/value/Json.h"

namespace quillet::news {
namespace {

using platform::Value;

// The pages that stay in the player's web view, each anchored at its start
// and matched without regard to case. The hosts are the stand-in hosts of
// the services the embedded player uses.
const std::array<platform::RegularExpression, 5>& playerPagePatterns() {
  static const auto* patterns = [] {
    auto make = [](const char* pattern) {
      return *platform::RegularExpression::create(pattern, platform::RegularExpression::kCaseInsensitive);
    };
    return new std::array<platform::RegularExpression, 5>{
        // The video site's embed pages: "/embed/" and anything behind it.
        make(R"(^https?://(www\.)?video\.quillet\.test/embed/(.*)$)"),
        // The advertising conversion pages.
        make(R"(^https?://ads\.quillet\.test/pagead/conversion/)"),
        // The advertising verification pages: "/sodar/", a name ending in ".html".
        make(R"(^https://adverify\.quillet\.test/sodar/(.*)\.html$)"),
        // The sign-in service's pages.
        make(R"(^https?://accounts\.quillet\.test/o/oauth2/(.*)$)"),
        // The static proxy page.
        make(R"(^https://content\.quillet\.test/static/proxy\.html(.*)$)"),
    };
  }();
  return *patterns;
}

// The host as the URL writes it (the event names keep their case).
std::string hostOf(const std::string& url) {
  size_t start = url.find("://");
  if (start == std::string::npos) return "";
  start += 3;
  size_t end = url.find_first_of("/?#", start);
  return url.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

}  // namespace

bool InlinePlayerView::loadWithVideoId(const std::string& videoId) { return loadWithVideoId(videoId, Value()); }

bool InlinePlayerView::loadWithVideoId(const std::string& videoId, const Value& playerVars) {
  videoId_ = videoId;
  Value vars = playerVars.isNil() ? Value(Value::Dictionary{}) : playerVars;
  return loadWithPlayerParams(Value::dictionary({{"videoId", Value(videoId)}, {"playerVars", vars}}));
}

bool InlinePlayerView::loadWithPlaylistId(const std::string& playlistId) {
  return loadWithPlaylistId(playlistId, Value());
}

bool InlinePlayerView::loadWithPlaylistId(const std::string& playlistId, const Value& playerVars) {
  Value vars = playerVars.isNil() ? Value(Value::Dictionary{}) : playerVars;
  vars.set("listType", Value("playlist"));
  vars.set("list", Value(playlistId));
  return loadWithPlayerParams(Value::dictionary({{"playerVars", vars}}));
}

bool InlinePlayerView::loadWithPlayerParams(const Value& additionalPlayerParams) {
  Value params = additionalPlayerParams.isDictionary() ? additionalPlayerParams : Value(Value::Dictionary{});
  if (params["height"].isNil()) params.set("height", Value("100%"));
  if (params["width"].isNil()) params.set("width", Value("100%"));
  params.set("events", Value::dictionary({{"onReady", Value("onReady")},
                                          {"onStateChange", Value("onStateChange")},
                                          {"onPlaybackQualityChange", Value("onPlaybackQualityChange")},
                                          {"onError", Value("onPlayerError")}}));
  originURL_ = "about:blank";
  if (params["playerVars"].isNil()) {
    params.set("playerVars", Value(Value::Dictionary{}));
  } else if (const Value& origin = params["playerVars"]["origin"]; !origin.isNil()) {
    originURL_ = platform::format("%@", origin);
  }

  makeWebView();

  std::string templateText;
  platform::Error error;
  auto directory =
      resourceDirectory_.empty() ? platform::FileSystem::standard()->resourceDirectory() : resourceDirectory_;
  if (!InlinePlayerTemplate::read(directory, &templateText, &error)) {
    platform::Log::write(platform::format("Received error rendering template: %@", error.description()));
    return false;
  }
  std::string json = platform::jsonEncode(params, true, &error);
  if (json.empty()) {
    platform::Log::write(platform::format("Attempted configuration of player with invalid playerVars: %@ \tError: %@",
                                          params, error.description()));
    return false;
  }
  std::string page;
  if (!InlinePlayerTemplate::render(templateText, json, &page, &error)) {
    platform::Log::write(platform::format("Received error rendering template: %@", error.description()));
    return false;
  }

  if (auto self = weak_from_this().lock()) {
    auto* delegate = static_cast<platform::WebViewDelegate*>(this);
    webView_->setDelegate(std::shared_ptr<platform::WebViewDelegate>(self, delegate));
  }
  webView_->allowsInlineMediaPlayback = true;
  webView_->mediaPlaybackRequiresUserAction = false;
  webView_->loadHTMLString(page, originURL_);

  if (auto delegate = delegate_.lock()) {
    if (auto loadingView = delegate->playerViewPreferredInitialLoadingView(*this)) {
      loadingView->setFrame(bounds());
      addSubview(loadingView);
      initialLoadingView_ = std::move(loadingView);
    }
  }
  return true;
}

void InlinePlayerView::makeWebView() {
  if (webView_) webView_->removeFromSuperview();
  reported_ = Reported{};
  webView_ = std::make_shared<platform::WebView>("webView");
  webView_->setFrame(bounds());
  webView_->scrollEnabled = false;
  webView_->bounces = false;
  webView_->setPageFactory(&InlinePlayerPage::make);
  if (auto delegate = delegate_.lock()) {
    if (auto color = delegate->playerViewPreferredWebViewBackgroundColor(*this)) {
      webView_->setBackgroundColor(color);
      if (color->alpha == 0) webView_->opaque = false;
    }
  }
  addSubview(webView_);
}

// Commands.

void InlinePlayerView::playVideo() { runScript("player.playVideo();"); }

void InlinePlayerView::pauseVideo() {
  notifyDelegateOfCallbackUrl(platform::format("%@://onStateChange?data=%@", kCallbackScheme, "2"));
  runScript("player.pauseVideo();");
}

void InlinePlayerView::stopVideo() { runScript("player.stopVideo();"); }

void InlinePlayerView::seekToSeconds(double seconds, bool allowSeekAhead) {
  runScript(platform::format("player.seekTo(%@, %@);", seconds, stringForJSBoolean(allowSeekAhead)));
}

void InlinePlayerView::cueVideoById(const std::string& videoId, double startSeconds, PlaybackQuality suggestedQuality) {
  runScript(platform::format("player.cueVideoById('%@', %@, '%@');", videoId, startSeconds,
                             stringForPlaybackQuality(suggestedQuality)));
}

void InlinePlayerView::cueVideoById(const std::string& videoId, double startSeconds, double endSeconds,
                                    PlaybackQuality suggestedQuality) {
  runScript(platform::format(
      "player.cueVideoById({'videoId': '%@', 'startSeconds': %@, 'endSeconds': %@, 'suggestedQuality': '%@'});",
      videoId, startSeconds, endSeconds, stringForPlaybackQuality(suggestedQuality)));
}

void InlinePlayerView::loadVideoById(const std::string& videoId, double startSeconds,
                                     PlaybackQuality suggestedQuality) {
  runScript(platform::format("player.loadVideoById('%@', %@, '%@');", videoId, startSeconds,
                             stringForPlaybackQuality(suggestedQuality)));
}

void InlinePlayerView::loadVideoById(const std::string& videoId, double startSeconds, double endSeconds,
                                     PlaybackQuality suggestedQuality) {
  runScript(platform::format(
      "player.loadVideoById({'videoId': '%@', 'startSeconds': %@, 'endSeconds': %@, 'suggestedQuality': '%@'});",
      videoId, startSeconds, endSeconds, stringForPlaybackQuality(suggestedQuality)));
}

void InlinePlayerView::cueVideoByURL(const std::string& videoURL, double startSeconds,
                                     PlaybackQuality suggestedQuality) {
  runScript(platform::format("player.cueVideoByUrl('%@', %@, '%@');", videoURL, startSeconds,
                             stringForPlaybackQuality(suggestedQuality)));
}

void InlinePlayerView::cueVideoByURL(const std::string& videoURL, double startSeconds, double endSeconds,
                                     PlaybackQuality suggestedQuality) {
  runScript(platform::format("player.cueVideoByUrl('%@', %@, %@, '%@');", videoURL, startSeconds, endSeconds,
                             stringForPlaybackQuality(suggestedQuality)));
}

void InlinePlayerView::loadVideoByURL(const std::string& videoURL, double startSeconds,
                                      PlaybackQuality suggestedQuality) {
  runScript(platform::format("player.loadVideoByUrl('%@', %@, '%@');", videoURL, startSeconds,
                             stringForPlaybackQuality(suggestedQuality)));
}

void InlinePlayerView::loadVideoByURL(const std::string& videoURL, double startSeconds, double endSeconds,
                                      PlaybackQuality suggestedQuality) {
  runScript(platform::format("player.loadVideoByUrl('%@', %@, %@, '%@');", videoURL, startSeconds, endSeconds,
                             stringForPlaybackQuality(suggestedQuality)));
}

void InlinePlayerView::cuePlaylist(const std::string& playlist, int index, double startSeconds,
                                   PlaybackQuality suggestedQuality) {
  runScript(platform::format("player.cuePlaylist(%@, %@, %@, '%@');", playlist, index, startSeconds,
                             stringForPlaybackQuality(suggestedQuality)));
}

void InlinePlayerView::loadPlaylist(const std::string& playlist, int index, double startSeconds,
                                    PlaybackQuality suggestedQuality) {
  runScript(platform::format("player.loadPlaylist(%@, %@, %@, '%@');", playlist, index, startSeconds,
                             stringForPlaybackQuality(suggestedQuality)));
}

void InlinePlayerView::cuePlaylistByPlaylistId(const std::string& playlistId, int index, double startSeconds,
                                               PlaybackQuality suggestedQuality) {
  cuePlaylist(platform::format("'%@'", playlistId), index, startSeconds, suggestedQuality);
}

void InlinePlayerView::cuePlaylistByVideos(const std::vector<std::string>& videoIds, int index, double startSeconds,
                                           PlaybackQuality suggestedQuality) {
  cuePlaylist(stringFromVideoIdArray(videoIds), index, startSeconds, suggestedQuality);
}

void InlinePlayerView::loadPlaylistByPlaylistId(const std::string& playlistId, int index, double startSeconds,
                                                PlaybackQuality suggestedQuality) {
  loadPlaylist(platform::format("'%@'", playlistId), index, startSeconds, suggestedQuality);
}

void InlinePlayerView::loadPlaylistByVideos(const std::vector<std::string>& videoIds, int index, double startSeconds,
                                            PlaybackQuality suggestedQuality) {
  loadPlaylist(stringFromVideoIdArray(videoIds), index, startSeconds, suggestedQuality);
}

void InlinePlayerView::setPlaybackRate(float suggestedRate) {
  runScript(platform::format("player.setPlaybackRate(%f);", static_cast<double>(suggestedRate)));
}

void InlinePlayerView::setLoop(bool loop) {
  runScript(platform::format("player.setLoop(%@);", stringForJSBoolean(loop)));
}

void InlinePlayerView::setShuffle(bool shuffle) {
  runScript(platform::format("player.setShuffle(%@);", stringForJSBoolean(shuffle)));
}

void InlinePlayerView::setPlaybackQuality(PlaybackQuality suggestedQuality) {
  runScript(platform::format("player.setPlaybackQuality('%@');", stringForPlaybackQuality(suggestedQuality)));
}

void InlinePlayerView::playVideoAt(int index) { runScript(platform::format("player.playVideoAt(%@);", index)); }

void InlinePlayerView::nextVideo() { runScript("player.nextVideo();"); }

void InlinePlayerView::previousVideo() { runScript("player.previousVideo();"); }

// Queries.

float InlinePlayerView::playbackRate() {
  return static_cast<float>(Value(stringFromEvaluatingJavaScript("player.getPlaybackRate();")).doubleValue());
}

Value InlinePlayerView::availablePlaybackRates() {
  Value rates = platform::jsonDecode(stringFromEvaluatingJavaScript("player.getAvailablePlaybackRates();"));
  return rates.isArray() ? rates : Value();
}

float InlinePlayerView::videoLoadedFraction() {
  return static_cast<float>(Value(stringFromEvaluatingJavaScript("player.getVideoLoadedFraction();")).doubleValue());
}

PlayerState InlinePlayerView::playerState() {
  return playerStateForString(Value(stringFromEvaluatingJavaScript("player.getPlayerState();")));
}

float InlinePlayerView::currentTime() {
  return static_cast<float>(Value(stringFromEvaluatingJavaScript("player.getCurrentTime();")).doubleValue());
}

PlaybackQuality InlinePlayerView::playbackQuality() {
  return playbackQualityForString(Value(stringFromEvaluatingJavaScript("player.getPlaybackQuality();")));
}

double InlinePlayerView::duration() {
  return Value(stringFromEvaluatingJavaScript("player.getDuration();")).doubleValue();
}

std::string InlinePlayerView::videoUrl() { return stringFromEvaluatingJavaScript("player.getVideoUrl();"); }

std::string InlinePlayerView::videoEmbedCode() { return stringFromEvaluatingJavaScript("player.getVideoEmbedCode();"); }

Value InlinePlayerView::playlist() {
  Value ids = platform::jsonDecode(stringFromEvaluatingJavaScript("player.getPlaylist();"));
  return ids.isArray() ? ids : Value();
}

int InlinePlayerView::playlistIndex() {
  return static_cast<int>(Value(stringFromEvaluatingJavaScript("player.getPlaylistIndex();")).integerValue());
}

std::vector<PlaybackQuality> InlinePlayerView::availableQualityLevels() {
  std::string levels = stringFromEvaluatingJavaScript("player.getAvailableQualityLevels().toString();");
  std::vector<PlaybackQuality> qualities;
  if (levels.empty()) return qualities;
  size_t start = 0;
  for (;;) {
    size_t comma = levels.find(',', start);
    qualities.push_back(playbackQualityForString(Value(levels.substr(start, comma - start))));
    if (comma == std::string::npos) return qualities;
    start = comma + 1;
  }
}

std::string InlinePlayerView::stringFromVideoIdArray(const std::vector<std::string>& videoIds) {
  std::string joined;
  for (const auto& id : videoIds) {
    if (!joined.empty()) joined += ", ";
    joined += platform::format("'%@'", id);
  }
  return platform::format("[%@]", joined);
}

std::string InlinePlayerView::stringFromEvaluatingJavaScript(const std::string& script) {
  if (!webView_) return "";
  return webView_->stringByEvaluatingJavaScriptFromString(script);
}

// Events and navigation.

void InlinePlayerView::notifyDelegateOfCallbackUrl(const std::string& url) {
  std::string action = hostOf(url);
  Value data;
  if (size_t query = url.find('?'); query != std::string::npos) {
    std::string text = url.substr(query + 1);
    if (size_t equals = text.find('='); equals != std::string::npos) {
      text = text.substr(equals + 1);
      data = Value(text.substr(0, text.find('=')));
    }
  }
  auto keepAlive = weak_from_this().lock();
  auto delegate = delegate_.lock();
  if (action == "onReady") {
    reported_.ready = true;
    removeInitialLoadingView();
    if (delegate) delegate->playerViewDidBecomeReady(*this);
  } else if (action == "onStateChange") {
    reported_.state = playerStateForString(data);
    if (delegate) delegate->playerViewDidChangeToState(*this, reported_.state);
  } else if (action == "onPlaybackQualityChange") {
    reported_.quality = playbackQualityForString(data);
    if (delegate) delegate->playerViewDidChangeToQuality(*this, reported_.quality);
  } else if (action == "onError") {
    reported_.error = playerErrorForString(data);
    if (delegate) delegate->playerViewReceivedError(*this, *reported_.error);
  } else if (action == "onPlayTime") {
    reported_.playTime = static_cast<float>(data.doubleValue());
    if (delegate) delegate->playerViewDidPlayTime(*this, reported_.playTime);
  } else if (action == "onYouTubeIframeAPIFailedToLoad") {
    removeInitialLoadingView();
  }
}

bool InlinePlayerView::handleHttpNavigationToUrl(const std::string& url) {
  for (const auto& pattern : playerPagePatterns()) {
    if (pattern.firstMatch(url)) return true;
  }
  platform::Application::sharedApplication().openURL(url);
  return false;
}

bool InlinePlayerView::webViewShouldStartLoad(platform::WebView&, const std::string& url, platform::WebNavigationType) {
  auto parsed = platform::Url::parse(url);
  if (!parsed) return true;
  auto origin = platform::Url::parse(originURL_);
  if (origin && !origin->host().empty() && strcasecmp(origin->host().c_str(), parsed->host().c_str()) == 0) {
    return true;
  }
  const std::string& scheme = parsed->scheme();
  if (scheme == kCallbackScheme) {
    notifyDelegateOfCallbackUrl(url);
    return false;
  }
  if (scheme == "http" || scheme == "https") return handleHttpNavigationToUrl(url);
  return true;
}

void InlinePlayerView::webViewDidFailLoad(platform::WebView&, const platform::Error&) { removeInitialLoadingView(); }

void InlinePlayerView::removeInitialLoadingView() {
  if (!initialLoadingView_) return;
  initialLoadingView_->removeFromSuperview();
  initialLoadingView_.reset();
}

platform::Rect InlinePlayerView::bounds() const {
  const auto& frame = this->frame();
  return frame ? platform::Rect{0, 0, frame->width, frame->height} : platform::Rect{};
}

void InlinePlayerView::layoutSubviews() {
  if (webView_) webView_->setFrame(bounds());
  if (initialLoadingView_) initialLoadingView_->setFrame(bounds());
}

void InlinePlayerView::describeState(Value& into) const {
  into.set("videoId", Value(videoId_));
  into.set("ready", Value(reported_.ready));
  into.set("state", Value(playerStateName(reported_.state)));
  into.set("quality", Value(stringForPlaybackQuality(reported_.quality)));
  into.set("playTime", Value(static_cast<double>(reported_.playTime)));
  if (reported_.error) into.set("error", Value(playerErrorName(*reported_.error)));
}

}  // namespace quillet::news
