#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

#include "platform/media/MediaAsset.h"

namespace quillet::platform {

// The playing state of one asset: where it stands and where it was asked to
// go. A MediaPlayer moves it; seekToTime() may be called from any thread and
// takes effect when the player next reads or plays. Thread-safe.
class MediaPlayerItem {
 public:
  explicit MediaPlayerItem(std::shared_ptr<MediaAsset> asset);

  const std::shared_ptr<MediaAsset>& asset() const { return asset_; }
  // Seconds from the start of the medium.
  double currentTime() const;
  void seekToTime(double seconds);

 private:
  friend class MediaPlayer;

  // A seek not yet seen by the player: its time, and a number that changes
  // with each seek.
  struct Seek {
    double seconds = 0;
    uint64_t generation = 0;
  };
  Seek lastSeek() const;
  void setCurrentTime(double seconds);

  const std::shared_ptr<MediaAsset> asset_;
  mutable std::mutex mutex_;
  double currentTime_ = 0;
  Seek seek_;
};

}  // namespace quillet::platform
