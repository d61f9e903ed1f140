#include "news/card/CardVideo.h"

#include <utility>

#include "platform/image/Image.h"
#include "platform/media/MediaAsset.h"
#include "platform/media/MediaImageGenerator.h"
#include "platform/media/MediaPlayer.h"
#include "platform/media/MediaPlayerItem.h"
#include "platform/runloop/RunLoop.h"
#include "platform/text/PercentEscape.h"
#include "platform/ui/Screen.h"

namespace quillet::news {

namespace {

std::string escapedURL(const std::string& url) {
  return platform::PercentEscape::escape(url, platform::PercentEscape::kLegacyUrlLegal);
}

}  // namespace

CardVideo::CardVideo(std::shared_ptr<platform::ImageView> thumbnail, std::shared_ptr<platform::View> videoArea,
                     std::shared_ptr<platform::View> playerView)
    : thumbnail_(std::move(thumbnail)), videoArea_(std::move(videoArea)), playerView_(std::move(playerView)) {}

CardVideo::~CardVideo() { stopObserving(); }

void CardVideo::generateThumbnail(const std::string& videoURL) {
  auto asset = platform::MediaAsset::assetWithURL(escapedURL(videoURL));
  platform::MediaImageGenerator generator(asset);
  generator.setAppliesPreferredTrackTransform(true);
  platform::Error ignored;
  auto frame = generator.copyImageAtTime(kThumbnailSeconds, nullptr, &ignored);
  thumbnail_->setHidden(false);
  if (frame) {
    thumbnail_->setImage(platform::Image::imageWithBitmap(frame, platform::Screen::main().scale));
  } else {
    thumbnail_->clearImage();
  }
}

bool CardVideo::play(const std::string& videoURL, std::function<void()> onEnd) {
  auto asset = platform::MediaAsset::assetWithURL(escapedURL(videoURL));
  auto item = std::make_shared<platform::MediaPlayerItem>(asset);
  if (!asset->isPlayable()) return false;
  stopObserving();
  player_ = std::make_shared<platform::MediaPlayer>(item);
  playerView_->setFrame(videoArea_->frame());
  endObserver_ = platform::NotificationCenter::defaultCenter().addObserver(
      platform::MediaPlayer::kDidPlayToEndTimeNotification, item.get(),
      [onEnd = std::move(onEnd)](const platform::Notification&) {
        if (onEnd) onEnd();
      });
  videoArea_->addSubview(playerView_);
  player_->play();
  return true;
}

void CardVideo::pause() {
  if (player_) player_->pause();
}

void CardVideo::seekToStart() {
  if (player_) player_->currentItem()->seekToTime(0);
}

void CardVideo::stopObserving() {
  if (endObserver_ != 0) platform::NotificationCenter::defaultCenter().removeObserver(endObserver_);
  endObserver_ = 0;
}

}  // namespace quillet::news
