#pragma once

#include <string>

#include "platform/value/Value.h"

namespace quillet::news {

// The embedded player's states, qualities and errors, and the texts the
// player's page uses for them. Pure functions.

enum class PlayerState { Unstarted = 0, Ended = 1, Playing = 2, Paused = 3, Buffering = 4, Queued = 5, Unknown = 6 };

enum class PlaybackQuality {
  Small = 0,
  Medium = 1,
  Large = 2,
  HD720 = 3,
  HD1080 = 4,
  HighRes = 5,
  Auto = 6,
  Unknown = 8,
};

enum class PlayerError { InvalidParam = 0, HTML5Error = 1, VideoNotFound = 2, NotEmbeddable = 3, Unknown = 4 };

// "-1" Unstarted, "0" Ended, "1" Playing, "2" Paused, "3" Buffering, "5"
// Queued; any other text (or a non-text such as nil) is Unknown.
PlayerState playerStateForString(const platform::Value& text);
// The page's text of a state; "unknown" for Unknown.
std::string stringForPlayerState(PlayerState state);

// "small" ... "auto"; any other text is Unknown (8).
PlaybackQuality playbackQualityForString(const platform::Value& text);
// The page's text of a quality; "unknown" for every value above Auto.
std::string stringForPlaybackQuality(PlaybackQuality quality);

// "2" InvalidParam, "5" HTML5Error, "100"/"105" VideoNotFound, "101"/"150"
// NotEmbeddable; anything else Unknown.
PlayerError playerErrorForString(const platform::Value& text);

// Names for people reading the player's state: "unstarted", "ended",
// "playing", "paused", "buffering", "queued", "unknown"; and of errors:
// "invalidParam", "html5Error", "videoNotFound", "notEmbeddable", "unknown".
std::string playerStateName(PlayerState state);
std::string playerErrorName(PlayerError error);

// "true" or "false", as a script takes it.
std::string stringForJSBoolean(bool value);

}  // namespace quillet::news
