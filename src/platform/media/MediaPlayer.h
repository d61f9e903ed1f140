#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

#include "platform/media/MediaPlayerItem.h"
#include "platform/runloop/RunLoop.h"

namespace quillet::platform {

// Plays one item on a thread of its own. Frames of the video stream (and of
// the audio stream, decoded and dropped: there is no sound device) are taken
// at play speed: each is due at the play start plus its time in the medium,
// on the clock of `mainLoop`, so a ManualClock moved by a test moves
// playback too. The thread never sleeps on the clock's time: it looks at it
// in short real-time slices, and pause() and the destructor wake it at once.
//
// At the end of the medium the player pauses, leaves the item at its end,
// and posts to `mainLoop` the notification kDidPlayToEndTimeNotification
// with the item as its object, delivered through the default notification
// centre on the loop's thread. play() again after seekToTime(0) plays again;
// play() at the end without a seek ends again at once.
//
// A failure to open, read or decode is logged, pauses the player and posts
// kFailedToPlayToEndTimeNotification instead (userInfo "error": the error's
// description); the end-of-play notification is not posted, since the
// medium did not play to its end. A later play() opens the medium again.
//
// The public functions may be called from any thread. The item and the loop
// are kept alive by the player and by work it posted.
class MediaPlayer {
 public:
  static constexpr const char* kDidPlayToEndTimeNotification = "MediaPlayerItemDidPlayToEndTime";
  static constexpr const char* kFailedToPlayToEndTimeNotification = "MediaPlayerItemFailedToPlayToEndTime";

  // `mainLoop` null: RunLoop::mainShared().
  explicit MediaPlayer(std::shared_ptr<MediaPlayerItem> item, std::shared_ptr<RunLoop> mainLoop = nullptr);
  // Stops playback, ends a blocking read, and joins the thread.
  ~MediaPlayer();
  MediaPlayer(const MediaPlayer&) = delete;
  MediaPlayer& operator=(const MediaPlayer&) = delete;

  void play();
  void pause();
  // 1.0 while playing, 0.0 while paused or after the end.
  double rate() const;
  std::shared_ptr<MediaPlayerItem> currentItem() const { return item_; }
  // Video frames decoded since the player was made.
  int64_t framesDecoded() const { return framesDecoded_.load(); }

 private:
  enum class Wait { Due, Interrupted, Stopped };

  void playbackThread();
  // Waits until the loop's clock reaches `deadline`, or until a pause, a
  // new play, a seek (generation other than `seenSeek`) or the destructor.
  Wait waitUntil(double deadline, uint64_t seenSeek);
  void finish(const char* notification, Value userInfo);

  const std::shared_ptr<MediaPlayerItem> item_;
  const std::shared_ptr<RunLoop> loop_;
  const std::shared_ptr<Clock> clock_;

  mutable std::mutex mutex_;
  std::condition_variable wake_;
  bool stopping_ = false;
  double rate_ = 0;
  bool playPending_ = false;  // play() not yet taken up by the thread
  double playRequestedAt_ = 0;
  bool pausePending_ = false;  // pause() not yet taken up by the thread
  double pausedAt_ = 0;

  std::atomic<bool> abort_{false};
  std::atomic<int64_t> framesDecoded_{0};
  std::thread thread_;
};

}  // namespace quillet::platform
