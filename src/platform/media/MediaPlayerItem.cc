#include "platform/media/MediaPlayerItem.h"

#include <algorithm>

namespace quillet::platform {

MediaPlayerItem::MediaPlayerItem(std::shared_ptr<MediaAsset> asset) : asset_(std::move(asset)) {}

double MediaPlayerItem::currentTime() const {
  std::lock_guard lock(mutex_);
  return currentTime_;
}

void MediaPlayerItem::seekToTime(double seconds) {
  std::lock_guard lock(mutex_);
  currentTime_ = std::max(seconds, 0.0);
  seek_.seconds = currentTime_;
  ++seek_.generation;
}

MediaPlayerItem::Seek MediaPlayerItem::lastSeek() const {
  std::lock_guard lock(mutex_);
  return seek_;
}

void MediaPlayerItem::setCurrentTime(double seconds) {
  std::lock_guard lock(mutex_);
  currentTime_ = seconds;
}

}  // namespace quillet::platform
