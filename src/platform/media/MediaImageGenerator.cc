#include "platform/media/MediaImageGenerator.h"

#include <algorithm>

extern "C" {
#include <libavutil/frame.h>
}

#include "platform/media/MediaError.h"

namespace quillet::platform {
namespace {

// A frame time within this of the time asked counts as at it.
constexpr double kTimeTolerance = 1e-6;

// `source` turned counter-clockwise by `degrees` (90, 180 or 270).
std::shared_ptr<Bitmap> turned(const Bitmap& source, int degrees) {
  auto out = std::make_shared<Bitmap>();
  const bool quarter = degrees == 90 || degrees == 270;
  out->width = quarter ? source.height : source.width;
  out->height = quarter ? source.width : source.height;
  out->componentsPerPixel = source.componentsPerPixel;
  out->bitsPerComponent = source.bitsPerComponent;
  out->pixels.resize(source.pixels.size());
  const size_t pixelBytes = static_cast<size_t>(source.componentsPerPixel) * (source.bitsPerComponent / 8);
  for (int y = 0; y < source.height; ++y) {
    for (int x = 0; x < source.width; ++x) {
      int toX = x, toY = y;
      if (degrees == 90) {
        toX = y;
        toY = source.width - 1 - x;
      } else if (degrees == 180) {
        toX = source.width - 1 - x;
        toY = source.height - 1 - y;
      } else if (degrees == 270) {
        toX = source.height - 1 - y;
        toY = x;
      }
      std::copy_n(source.pixels.data() + (static_cast<size_t>(y) * source.width + x) * pixelBytes, pixelBytes,
                  out->pixels.data() + (static_cast<size_t>(toY) * out->width + toX) * pixelBytes);
    }
  }
  return out;
}

}  // namespace

MediaImageGenerator::MediaImageGenerator(std::shared_ptr<MediaAsset> asset) : asset_(std::move(asset)) {}

std::shared_ptr<const Bitmap> MediaImageGenerator::copyImageAtTime(double seconds, double* actualTime, Error* error) {
  auto source = asset_->openSource(nullptr, error);
  if (!source) return nullptr;
  if (!source->hasVideo()) {
    setMediaError(error, kMediaErrorNoVideo, asset_->url() + " has no video");
    return nullptr;
  }
  if (!source->seek(seconds, error)) return nullptr;

  std::unique_ptr<AVFrame, void (*)(AVFrame*)> shown(av_frame_alloc(), [](AVFrame* f) { av_frame_free(&f); });
  bool haveShown = false;
  double shownTime = 0;
  MediaFrame frame;
  while (true) {
    const MediaSource::Read read = source->nextFrame(&frame, error);
    if (read == MediaSource::Read::Failed) return nullptr;
    if (read == MediaSource::Read::End) break;
    if (!frame.isVideo) continue;
    if (haveShown && frame.time > seconds + kTimeTolerance) break;
    av_frame_unref(shown.get());
    if (av_frame_ref(shown.get(), frame.frame) < 0) {
      setMediaError(error, kMediaErrorDecodeFailed, "out of memory");
      return nullptr;
    }
    haveShown = true;
    shownTime = frame.time;
    if (frame.time > seconds + kTimeTolerance) break;  // the asked time lies before the first frame
  }
  if (!haveShown) {
    setMediaError(error, kMediaErrorNoFrame, asset_->url() + " has no picture at that time");
    return nullptr;
  }
  std::shared_ptr<Bitmap> bitmap = source->rgbaBitmap(shown.get(), error);
  if (!bitmap) return nullptr;
  if (appliesPreferredTrackTransform_ && source->displayRotation() != 0) {
    bitmap = turned(*bitmap, source->displayRotation());
  }
  if (actualTime) *actualTime = shownTime;
  return bitmap;
}

}  // namespace quillet::platform
