#include "news/player/InlinePlayerTypes.h"

#include <array>
#include <utility>

namespace quillet::news {
namespace {

constexpr std::array<std::pair<PlayerState, const char*>, 6> kStates{{
    {PlayerState::Unstarted, "-1"},
    {PlayerState::Ended, "0"},
    {PlayerState::Playing, "1"},
    {PlayerState::Paused, "2"},
    {PlayerState::Buffering, "3"},
    {PlayerState::Queued, "5"},
}};

constexpr std::array<std::pair<PlaybackQuality, const char*>, 7> kQualities{{
    {PlaybackQuality::Small, "small"},
    {PlaybackQuality::Medium, "medium"},
    {PlaybackQuality::Large, "large"},
    {PlaybackQuality::HD720, "hd720"},
    {PlaybackQuality::HD1080, "hd1080"},
    {PlaybackQuality::HighRes, "highres"},
    {PlaybackQuality::Auto, "auto"},
}};

constexpr std::array<std::pair<PlayerError, const char*>, 6> kErrors{{
    {PlayerError::InvalidParam, "2"},
    {PlayerError::HTML5Error, "5"},
    {PlayerError::VideoNotFound, "100"},
    {PlayerError::VideoNotFound, "105"},
    {PlayerError::NotEmbeddable, "101"},
    {PlayerError::NotEmbeddable, "150"},
}};

// The value whose text equals `text`, else `otherwise`; only strings match.
template <class Table, class T>
T lookUp(const Table& table, const platform::Value& text, T otherwise) {
  if (!text.isString()) return otherwise;
  for (const auto& [value, name] : table) {
    if (text.string() == name) return value;
  }
  return otherwise;
}

template <class Table, class T>
std::string nameOf(const Table& table, T value) {
  for (const auto& [candidate, name] : table) {
    if (candidate == value) return name;
  }
  return "unknown";
}

}  // namespace

PlayerState playerStateForString(const platform::Value& text) { return lookUp(kStates, text, PlayerState::Unknown); }

std::string stringForPlayerState(PlayerState state) { return nameOf(kStates, state); }

PlaybackQuality playbackQualityForString(const platform::Value& text) {
  return lookUp(kQualities, text, PlaybackQuality::Unknown);
}

std::string stringForPlaybackQuality(PlaybackQuality quality) { return nameOf(kQualities, quality); }

PlayerError playerErrorForString(const platform::Value& text) { return lookUp(kErrors, text, PlayerError::Unknown); }

std::string playerStateName(PlayerState state) {
  switch (state) {
    case PlayerState::Unstarted:
      return "unstarted";
    case PlayerState::Ended:
      return "ended";
    case PlayerState::Playing:
      return "playing";
    case PlayerState::Paused:
      return "paused";
    case PlayerState::Buffering:
      return "buffering";
    case PlayerState::Queued:
      return "queued";
    case PlayerState::Unknown:
      break;
  }
  return "unknown";
}

std::string playerErrorName(PlayerError error) {
  switch (error) {
    case PlayerError::InvalidParam:
      return "invalidParam";
    case PlayerError::HTML5Error:
      return "html5Error";
    case PlayerError::VideoNotFound:
      return "videoNotFound";
    case PlayerError::NotEmbeddable:
      return "notEmbeddable";
    case PlayerError::Unknown:
      break;
  }
  return "unknown";
}

std::string stringForJSBoolean(bool value) { return value ? "true" : "false"; }

}  // namespace quillet::news
