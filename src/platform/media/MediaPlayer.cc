#include "platform/media/MediaPlayer.h"

#include <algorithm>
#include <chrono>

#include "platform/log/Log.h"
#include "platform/notifications/NotificationCenter.h"

namespace quillet::platform {
namespace {

// How long the thread waits in real time before it looks at the clock again.
constexpr double kWaitSliceSeconds = 0.005;
// Clock times are sums of doubles: a frame this close to due counts as due.
constexpr double kDueTolerance = 1e-9;

}  // namespace

MediaPlayer::MediaPlayer(std::shared_ptr<MediaPlayerItem> item, std::shared_ptr<RunLoop> mainLoop)
    : item_(std::move(item)),
      loop_(mainLoop ? std::move(mainLoop) : RunLoop::mainShared()),
      clock_(loop_->clock()),
      thread_([this] { playbackThread(); }) {}

MediaPlayer::~MediaPlayer() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  abort_ = true;
  wake_.notify_all();
  thread_.join();
}

void MediaPlayer::play() {
  {
    std::lock_guard lock(mutex_);
    if (rate_ > 0) return;
    rate_ = 1.0;
    playRequestedAt_ = clock_->monotonicSeconds();
    playPending_ = true;
  }
  wake_.notify_all();
}

void MediaPlayer::pause() {
  {
    std::lock_guard lock(mutex_);
    if (rate_ == 0) return;
    rate_ = 0;
    // A play the thread has not taken up yet never started: nothing moved.
    if (playPending_) {
      playPending_ = false;
    } else {
      pausedAt_ = clock_->monotonicSeconds();
      pausePending_ = true;
    }
  }
  wake_.notify_all();
}

double MediaPlayer::rate() const {
  std::lock_guard lock(mutex_);
  return rate_;
}

MediaPlayer::Wait MediaPlayer::waitUntil(double deadline, uint64_t seenSeek) {
  std::unique_lock lock(mutex_);
  while (true) {
    if (stopping_) return Wait::Stopped;
    if (rate_ == 0 || playPending_ || item_->lastSeek().generation != seenSeek) return Wait::Interrupted;
    const double left = deadline - clock_->monotonicSeconds();
    if (left <= kDueTolerance) return Wait::Due;
    wake_.wait_for(lock, std::chrono::duration<double>(std::min(left, kWaitSliceSeconds)));
  }
}

void MediaPlayer::finish(const char* notification, Value userInfo) {
  {
    std::lock_guard lock(mutex_);
    rate_ = 0;
    playPending_ = false;
  }
  loop_->post([item = item_, name = std::string(notification), info = std::move(userInfo)] {
    NotificationCenter::defaultCenter().post(name, item.get(), info);
  });
}

void MediaPlayer::playbackThread() {
  std::unique_ptr<MediaSource> source;
  uint64_t seenSeek = 0;
  double position = 0;   // media time reached, seconds
  double playStart = 0;  // the clock's time at media time 0
  bool havePending = false;
  bool pendingIsEnd = false;
  double dueAt = 0;  // media time of the pending frame or end
  bool atEnd = false;
  bool needSeek = false;

  while (true) {
    {
      std::unique_lock lock(mutex_);
      if (pausePending_) {
        pausePending_ = false;
        // The medium stands where the clock stood at the pause (not beyond its
        // end); frames due before then and not yet taken are taken at once
        // after the next play.
        const double end = source && source->duration() > 0 ? source->duration() : pausedAt_ - playStart;
        position = std::max(position, std::min(pausedAt_ - playStart, end));
        item_->setCurrentTime(position);
      }
      wake_.wait(lock, [this] { return stopping_ || rate_ > 0; });
      if (stopping_) return;
    }
    const MediaPlayerItem::Seek seek = item_->lastSeek();
    const bool sought = seek.generation != seenSeek;
    if (sought) {
      seenSeek = seek.generation;
      position = seek.seconds;
      havePending = false;
      atEnd = false;
      needSeek = true;
    }
    {
      std::lock_guard lock(mutex_);
      if (playPending_) {
        playPending_ = false;
        playStart = playRequestedAt_ - position;
      } else if (sought) {
        playStart = clock_->monotonicSeconds() - position;
      }
    }

    Error error;
    if (!source) {
      source = item_->asset()->openSource(&abort_, &error);
      needSeek = position > 0;
      havePending = false;
    }
    if (source && needSeek && !source->seek(position, &error)) source.reset();
    needSeek = false;
    if (!source) {
      if (abort_) return;
      Log::write("media player: cannot play " + item_->asset()->url() + ": " + error.localizedDescription());
      finish(kFailedToPlayToEndTimeNotification, Value::dictionary({{"error", Value(error.description())}}));
      continue;
    }
    if (atEnd) {
      finish(kDidPlayToEndTimeNotification, Value());
      continue;
    }

    if (!havePending) {
      MediaFrame frame;
      const MediaSource::Read read = source->nextFrame(&frame, &error);
      if (read == MediaSource::Read::Failed) {
        if (abort_) return;
        Log::write("media player: cannot play " + item_->asset()->url() + ": " + error.localizedDescription());
        source.reset();
        finish(kFailedToPlayToEndTimeNotification, Value::dictionary({{"error", Value(error.description())}}));
        continue;
      }
      havePending = true;
      pendingIsEnd = read == MediaSource::Read::End;
      dueAt = pendingIsEnd ? std::max(source->duration(), position) : frame.time;
      if (read == MediaSource::Read::Frame && frame.isVideo) ++framesDecoded_;
    }

    const Wait waited = waitUntil(playStart + dueAt, seenSeek);
    if (waited == Wait::Stopped) return;
    if (waited == Wait::Interrupted) continue;
    havePending = false;
    position = std::max(position, dueAt);
    item_->setCurrentTime(position);
    if (pendingIsEnd) {
      atEnd = true;
      finish(kDidPlayToEndTimeNotification, Value());
    }
  }
}

}  // namespace quillet::platform
