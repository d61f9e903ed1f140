#include "platform/media/MediaAsset.h"

namespace quillet::platform {

std::shared_ptr<MediaAsset> MediaAsset::assetWithURL(std::string url) {
  return std::make_shared<MediaAsset>(std::move(url));
}

MediaAsset::MediaAsset(std::string url) : url_(std::move(url)) {}

std::unique_ptr<MediaSource> MediaAsset::openSource(const std::atomic<bool>* abort, Error* error) {
  Error failure;
  auto source = MediaSource::open(url_, abort, &failure);
  if (!source) {
    std::lock_guard lock(mutex_);
    lastError_ = failure;
  }
  if (error && !source) *error = std::move(failure);
  return source;
}

// Held under mutex_ so that concurrent askers wait for the one open.
void MediaAsset::probe() {
  if (probed_) return;
  Error failure;
  auto source = MediaSource::open(url_, nullptr, &failure);
  probed_ = true;
  playable_ = source != nullptr;
  duration_ = source ? source->duration() : 0;
  if (!source) lastError_ = failure;
}

bool MediaAsset::isPlayable() {
  std::lock_guard lock(mutex_);
  probe();
  return playable_;
}

double MediaAsset::duration() {
  std::lock_guard lock(mutex_);
  probe();
  return duration_;
}

std::optional<Error> MediaAsset::lastError() const {
  std::lock_guard lock(mutex_);
  return lastError_;
}

}  // namespace quillet::platform
