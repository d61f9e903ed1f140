#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "platform/image/Bitmap.h"
#include "platform/value/Error.h"

struct AVFormatContext;
struct AVCodecContext;
struct AVFrame;
struct AVPacket;
struct SwsContext;

namespace quillet::platform {

// One decoded frame, as MediaSource::nextFrame hands it out. `frame` belongs
// to the source and stays valid until its next call.
struct MediaFrame {
  bool isVideo = false;
  double time = 0;  // seconds from the start of the medium
  const AVFrame* frame = nullptr;
};

// An open container with decoders for its first video and first audio
// stream: what the asset, the image generator and the player read through.
// Not thread-safe: one owner thread at a time. Blocking calls (open, seek,
// nextFrame) end early with kMediaErrorCancelled once `*abort` becomes true.
class MediaSource {
 public:
  enum class Read { Frame, End, Failed };

  // Opens a file path, a file:// URL (percent escapes decoded) or an http(s)
  // URL. Null and `error` when nothing timed and decodable is there; still
  // pictures (PNG, JPEG, GIF ...) are not media. `abort` may be null; else it
  // must outlive the source.
  static std::unique_ptr<MediaSource> open(const std::string& url, const std::atomic<bool>* abort, Error* error);
  ~MediaSource();
  MediaSource(const MediaSource&) = delete;
  MediaSource& operator=(const MediaSource&) = delete;

  bool hasVideo() const { return video_ != nullptr; }
  bool hasAudio() const { return audio_ != nullptr; }
  // Seconds; 0 when the container does not say.
  double duration() const { return duration_; }
  // Degrees (0, 90, 180, 270) by which the display turns the decoded
  // picture counter-clockwise, from the video stream's display matrix.
  int displayRotation() const { return rotation_; }

  // Moves to the key frame at or before `seconds`; the frames that follow
  // come from there.
  bool seek(double seconds, Error* error);
  // The next frame of either stream in decoding order. End after the last
  // frame; Failed with `error` when reading or decoding fails.
  Read nextFrame(MediaFrame* out, Error* error);
  // A video frame converted to 8-bit RGBA at its coded size; null and
  // `error` when the conversion fails.
  std::shared_ptr<Bitmap> rgbaBitmap(const AVFrame* frame, Error* error);

 private:
  MediaSource() = default;
  bool openStreams(Error* error);
  bool receive(AVCodecContext* decoder, MediaFrame* out, Error* error, bool* failed);
  double timeOf(const AVFrame* frame, int streamIndex) const;
  void fail(Error* error, int code, const std::string& what, int averror) const;

  std::string location_;
  const std::atomic<bool>* abort_ = nullptr;
  AVFormatContext* format_ = nullptr;
  AVCodecContext* video_ = nullptr;
  AVCodecContext* audio_ = nullptr;
  int videoIndex_ = -1;
  int audioIndex_ = -1;
  AVPacket* packet_ = nullptr;
  AVFrame* frame_ = nullptr;
  SwsContext* scaler_ = nullptr;
  bool draining_ = false;
  double duration_ = 0;
  int rotation_ = 0;
};

}  // namespace quillet::platform
