#pragma once

#include <memory>

#include "platform/image/Bitmap.h"
#include "platform/media/MediaAsset.h"
#include "platform/value/Error.h"

namespace quillet::platform {

// Makes still pictures of an asset's video. Each call opens the medium
// afresh and blocks the calling thread until the picture is made. One
// generator is used from one thread at a time.
class MediaImageGenerator {
 public:
  explicit MediaImageGenerator(std::shared_ptr<MediaAsset> asset);

  // True: the picture is turned as the video stream's display matrix says
  // (a portrait recording comes out upright). Off by default.
  void setAppliesPreferredTrackTransform(bool applies) { appliesPreferredTrackTransform_ = applies; }
  bool appliesPreferredTrackTransform() const { return appliesPreferredTrackTransform_; }

  // The frame shown at `seconds` (the last one that starts at or before it;
  // the first frame for a time before it), as 8-bit RGBA. `actualTime`, when
  // non-null, receives that frame's time. Null and `error` (domain
  // "MediaErrorDomain") on failure.
  std::shared_ptr<const Bitmap> copyImageAtTime(double seconds, double* actualTime, Error* error);

 private:
  std::shared_ptr<MediaAsset> asset_;
  bool appliesPreferredTrackTransform_ = false;
};

}  // namespace quillet::platform
