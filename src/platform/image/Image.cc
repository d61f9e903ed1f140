#include "platform/image/Image.h"

#include <cstdio>

#include "platform/image/ImageDecoder.h"

namespace quillet::platform {

namespace {
double validScale(double scale) { return scale > 0 ? scale : 1; }
}  // namespace

std::shared_ptr<const Image> Image::imageWithData(std::span<const uint8_t> bytes, double scale) {
  const auto info = ImageDecoder::info(bytes);
  if (!info) return nullptr;
  auto image = std::shared_ptr<Image>(new Image());
  image->pixelWidth_ = info->width;
  image->pixelHeight_ = info->height;
  image->scale_ = validScale(scale);
  image->bitsPerComponent_ = info->bitsPerComponent;
  image->format_ = info->format;
  image->data_.assign(bytes.begin(), bytes.end());
  return image;
}

std::shared_ptr<const Image> Image::imageWithBitmap(std::shared_ptr<const Bitmap> bitmap, double scale,
                                                    std::string format) {
  if (!bitmap) return nullptr;
  auto image = std::shared_ptr<Image>(new Image());
  image->pixelWidth_ = bitmap->width;
  image->pixelHeight_ = bitmap->height;
  image->scale_ = validScale(scale);
  image->bitsPerComponent_ = bitmap->bitsPerComponent;
  image->format_ = std::move(format);
  image->bitmap_ = std::move(bitmap);
  return image;
}

size_t Image::byteCost() const { return bitmap_ ? bitmap_->pixels.size() : data_.size(); }

std::string Image::description() const {
  char text[96];
  std::snprintf(text, sizeof text, "<Image %dx%d @%gx>", pixelWidth_, pixelHeight_, scale_);
  return text;
}

}  // namespace quillet::platform
