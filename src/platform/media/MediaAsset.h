#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/media/MediaSource.h"
#include "platform/value/Error.h"

namespace quillet::platform {

// A timed medium at a URL: a file path, a file:// URL or an http(s) URL.
// Shared by the image generators and players made from it. Thread-safe.
class MediaAsset {
 public:
  static std::shared_ptr<MediaAsset> assetWithURL(std::string url);
  explicit MediaAsset(std::string url);

  const std::string& url() const { return url_; }

  // Opens the container on the calling thread (blocking) the first time it
  // is asked; the answer is kept. True when it holds a video or audio stream
  // that a decoder can decode.
  bool isPlayable();
  // Seconds; 0 when unknown or not playable.
  double duration();
  // The error of the last open that failed, if any.
  std::optional<Error> lastError() const;

  // A fresh reader of the medium for one user (a generator, a player);
  // a failure is also kept as lastError(). `abort` as in MediaSource::open.
  std::unique_ptr<MediaSource> openSource(const std::atomic<bool>* abort, Error* error);

 private:
  void probe();

  const std::string url_;
  mutable std::mutex mutex_;
  bool probed_ = false;
  bool playable_ = false;
  double duration_ = 0;
  std::optional<Error> lastError_;
};

}  // namespace quillet::platform
