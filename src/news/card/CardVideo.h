#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/notifications/NotificationCenter.h"
#include "platform/ui/ImageView.h"
#include "platform/ui/View.h"

namespace quillet::platform {
class MediaPlayer;
}

namespace quillet::news {

// The video of a card: the thumbnail taken at half a second, and playback in
// the video area with the player's view, reporting the end of play. URLs are
// percent-escaped before use, as the card always did. The views are the
// screen's and outlive this object. Main thread only.
class CardVideo {
 public:
  static constexpr double kThumbnailSeconds = 0.5;

  CardVideo(std::shared_ptr<platform::ImageView> thumbnail, std::shared_ptr<platform::View> videoArea,
            std::shared_ptr<platform::View> playerView);
  ~CardVideo();
  CardVideo(const CardVideo&) = delete;
  CardVideo& operator=(const CardVideo&) = delete;

  // Decodes the frame at half a second of `videoURL` (synchronously) and
  // shows it in the thumbnail; any failure shows an empty thumbnail.
  void generateThumbnail(const std::string& videoURL);
  // Starts playing `videoURL` in the video area; false when the video cannot
  // be played. `onEnd` runs on the main loop when play reaches the end.
  bool play(const std::string& videoURL, std::function<void()> onEnd);
  // Pauses the player, if there is one.
  void pause();
  // Takes the finished item back to time zero; the player stays in place.
  void seekToStart();
  bool hasPlayer() const { return player_ != nullptr; }
  const std::shared_ptr<platform::MediaPlayer>& player() const { return player_; }

 private:
  void stopObserving();

  std::shared_ptr<platform::ImageView> thumbnail_;
  std::shared_ptr<platform::View> videoArea_;
  std::shared_ptr<platform::View> playerView_;
  std::shared_ptr<platform::MediaPlayer> player_;
  platform::NotificationCenter::ObserverToken endObserver_ = 0;
};

}  // namespace quillet::news
