#include "news/player/InlinePlayerPage.h"

#include <algorithm>
#include <optional>

#include "news/player/InlinePlayerTemplate.h"
#include "news/player/InlinePlayerView.h"
#include "platform/runloop/RunLoop.h"
#include "platform/text/RegularExpression.h"
#include "platform/value/Format.h"
#include "platform/value/Json.h"

namespace quillet::news {
namespace {

using platform::Value;

// "player.<operation>(<arguments>)[.toString()];", the form of every script the player view sends.
const platform::RegularExpression& scriptExpression() {
  static const auto* expression = new platform::RegularExpression(*platform::RegularExpression::create(
      R"(^player\.([A-Za-z]+)\((.*)\)(\.toString\(\))?;$)", platform::RegularExpression::kDotMatchesLineSeparators));
  return *expression;
}

// The script's arguments as values: its literals are JSON but for the
// single quotes around texts.
std::optional<Value::Array> argumentsOf(const std::string& text) {
  std::string json = "[";
  for (char c : text) json += c == '\'' ? '"' : c;
  json += "]";
  platform::Error error;
  Value args = platform::jsonDecode(json, &error);
  if (!args.isArray()) return std::nullopt;
  return args.arrayItems();
}

std::string text(double number) { return Value(number).description(); }

std::string videoSite() {
  std::string site = "https://";
  site += InlinePlayerView::kVideoSiteHost;
  return site;
}

}  // namespace

InlinePlayerPage::InlinePlayerPage(const std::string& html) {
  std::string json = InlinePlayerTemplate::paramsJSONInPage(html);
  if (!json.empty()) params_ = platform::jsonDecode(json);
  const Value& vars = params_["playerVars"];
  if (params_["videoId"].isString()) videoId_ = params_["videoId"].string();
  if (vars["listType"] == Value("playlist") && vars["list"].isString()) playlistId_ = vars["list"].string();
}

InlinePlayerPage::~InlinePlayerPage() {
  if (timerLoop_) timerLoop_->cancel(timer_);
}

std::shared_ptr<platform::WebPage> InlinePlayerPage::make(const platform::WebPageSource& source) {
  if (InlinePlayerTemplate::paramsJSONInPage(source.html).empty()) return nullptr;
  return std::make_shared<InlinePlayerPage>(source.html);
}

void InlinePlayerPage::didFinishLoad() {
  if (!params_.isDictionary()) {
    navigate("inlineplayer://onYouTubeIframeAPIFailedToLoad");
    return;
  }
  ready_ = true;
  report("onReady", "null");
}

std::string InlinePlayerPage::run(const std::string& script) {
  if (!ready_) return "";
  auto match = scriptExpression().firstMatch(script);
  if (!match) return "";
  const std::string& name = (*match)[1].text;
  if (name.rfind("get", 0) == 0) return query(name);
  auto args = argumentsOf((*match)[2].text);
  if (!args) return "";
  return command(name, Value(*args));
}

std::string InlinePlayerPage::command(const std::string& name, const Value& args) {
  const Value& first = args.at(0);
  if (name == "playVideo") {
    play();
  } else if (name == "pauseVideo") {
    if (state_ == PlayerState::Playing || state_ == PlayerState::Buffering) setState(PlayerState::Paused);
  } else if (name == "stopVideo") {
    time_ = 0;
    if (state_ != PlayerState::Queued) setState(PlayerState::Unstarted);
  } else if (name == "seekTo") {
    time_ = std::clamp(first.doubleValue(), 0.0, duration());
  } else if (name == "cueVideoById" || name == "loadVideoById") {
    if (first.isDictionary()) {
      cue(first["videoId"].isString() ? first["videoId"].string() : "", first["startSeconds"],
          first["suggestedQuality"]);
    } else {
      cue(first.isString() ? first.string() : "", args.at(1), args.at(2));
    }
    if (name == "loadVideoById") play();
  } else if (name == "cueVideoByUrl" || name == "loadVideoByUrl") {
    std::string url = first.isString() ? first.string() : "";
    size_t id = url.find("v=");
    cue(id == std::string::npos ? url.substr(url.rfind('/') + 1) : url.substr(id + 2, url.find('&', id) - id - 2),
        args.at(1), args.at(args.count() - 1));
    videoUrl_ = url;
    if (name == "loadVideoByUrl") play();
  } else if (name == "cuePlaylist" || name == "loadPlaylist") {
    cueList(first, args.at(1), args.at(2), args.at(3));
    if (name == "loadPlaylist") play();
  } else if (name == "setPlaybackRate") {
    rate_ = first.doubleValue();
  } else if (name == "setLoop") {
    loop_ = first.boolValue();
  } else if (name == "setShuffle") {
    shuffle_ = first.boolValue();
  } else if (name == "setPlaybackQuality") {
    setQuality(first);
  } else if (name == "playVideoAt") {
    moveInList(first.integerValue());
  } else if (name == "nextVideo") {
    moveInList(playlistIndex_ + 1);
  } else if (name == "previousVideo") {
    moveInList(playlistIndex_ - 1);
  }
  return "";
}

std::string InlinePlayerPage::query(const std::string& name) const {
  if (name == "getPlaybackRate") return text(rate_);
  if (name == "getAvailablePlaybackRates") return "[0.25,0.5,1,1.5,2]";
  if (name == "getVideoLoadedFraction") return duration() > 0 && state_ != PlayerState::Unstarted ? "1" : "0";
  if (name == "getPlayerState") return stringForPlayerState(state_);
  if (name == "getCurrentTime") return text(time_);
  if (name == "getPlaybackQuality") return quality_;
  if (name == "getDuration") return text(duration());
  if (name == "getVideoUrl") {
    if (!videoUrl_.empty() || videoId_.empty()) return videoUrl_;
    return videoSite() + "/watch?v=" + videoId_;
  }
  if (name == "getVideoEmbedCode") {
    if (videoId_.empty()) return "";
    return platform::format(
        "<iframe width=\"640\" height=\"360\" src=\"%@/embed/%@\" frameborder=\"0\" allowfullscreen></iframe>",
        videoSite(), videoId_);
  }
  if (name == "getPlaylist") {
    if (playlist_.empty()) return "null";
    Value ids;
    for (const auto& id : playlist_) ids.append(Value(id));
    return platform::jsonEncode(ids);
  }
  if (name == "getPlaylistIndex") return text(static_cast<double>(playlistIndex_));
  if (name == "getAvailableQualityLevels") return "hd720,large,medium,small,auto";
  return "";
}

void InlinePlayerPage::cue(const std::string& videoId, const Value& startSeconds, const Value& quality) {
  videoId_ = videoId;
  videoUrl_.clear();
  playlist_.clear();
  playlistId_.clear();
  playlistIndex_ = 0;
  time_ = std::clamp(startSeconds.doubleValue(), 0.0, duration());
  setQuality(quality);
  setState(PlayerState::Queued);
}

void InlinePlayerPage::cueList(const Value& list, const Value& index, const Value& startSeconds, const Value& quality) {
  std::vector<std::string> ids;
  for (const auto& id : list.isArray() ? list.arrayItems() : Value::Array{}) {
    if (id.isString()) ids.push_back(id.string());
  }
  playlistIndex_ = ids.empty() ? 0 : std::clamp<int64_t>(index.integerValue(), 0, static_cast<int64_t>(ids.size()) - 1);
  std::string id = ids.empty() ? "" : ids[static_cast<size_t>(playlistIndex_)];
  std::string playlistId = list.isString() ? list.string() : "";
  cue(id, startSeconds, quality);
  playlist_ = std::move(ids);
  playlistId_ = std::move(playlistId);
}

void InlinePlayerPage::moveInList(int64_t index) {
  auto count = static_cast<int64_t>(playlist_.size());
  if (count == 0) return;
  if (index < 0 || index >= count) {
    if (!loop_) return;
    index = (index % count + count) % count;
  }
  playlistIndex_ = index;
  videoId_ = playlist_[static_cast<size_t>(index)];
  time_ = 0;
  setState(PlayerState::Unstarted);
  play();
}

void InlinePlayerPage::play() {
  if (videoId_.empty() && videoUrl_.empty()) {
    report("onError", "2");  // no video: an invalid parameter
    return;
  }
  if (state_ == PlayerState::Ended) time_ = 0;
  setState(PlayerState::Playing);
}

void InlinePlayerPage::setState(PlayerState state) {
  if (state == state_) return;
  state_ = state;
  report("onStateChange", stringForPlayerState(state));
  if (state == PlayerState::Playing && !timerLoop_) {
    timerLoop_ = platform::RunLoop::mainShared();
    std::weak_ptr<WebPage> weak = weak_from_this();
    timer_ = timerLoop_->scheduleRepeating(kPlayTimeInterval, [weak] {
      if (auto page = std::static_pointer_cast<InlinePlayerPage>(weak.lock())) page->tick();
    });
  } else if (state != PlayerState::Playing && timerLoop_) {
    timerLoop_->cancel(timer_);
    timerLoop_.reset();
  }
}

void InlinePlayerPage::setQuality(const Value& quality) {
  PlaybackQuality wanted = playbackQualityForString(quality);
  if (wanted == PlaybackQuality::Unknown || wanted == PlaybackQuality::Auto) return;
  std::string name = stringForPlaybackQuality(wanted);
  if (name == quality_) return;
  quality_ = name;
  report("onPlaybackQualityChange", name);
}

void InlinePlayerPage::tick() {
  time_ = std::min(time_ + kPlayTimeInterval * rate_, duration());
  report("onPlayTime", text(time_));
  if (time_ >= duration()) setState(PlayerState::Ended);
}

void InlinePlayerPage::report(const std::string& event, const std::string& data) {
  navigate(platform::format("%@://%@?data=%@", InlinePlayerView::kCallbackScheme, event, data));
}

}  // namespace quillet::news
