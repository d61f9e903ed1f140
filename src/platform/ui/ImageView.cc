#include "platform/ui/ImageView.h"

namespace quillet::platform {

void ImageView::setImageNamed(std::string name) {
  image_ = std::move(name);
  imageURL_.clear();
  loadedImage_.reset();
}

void ImageView::setImageWithURL(std::string url, std::string placeholderName) {
  imageURL_ = std::move(url);
  image_ = std::move(placeholderName);
  loadedImage_.reset();
}

void ImageView::imageDidLoad() {
  if (!imageURL_.empty()) image_ = imageURL_;
}

void ImageView::setImage(std::shared_ptr<const Image> image) {
  loadedImage_ = std::move(image);
  if (loadedImage_) {
    imageDidLoad();
  } else {
    image_.clear();
  }
}

void ImageView::clearImage() {
  image_.clear();
  imageURL_.clear();
  loadedImage_.reset();
}

void ImageView::describeState(Value& into) const {
  into.set("image", Value(image_));
  if (!imageURL_.empty()) into.set("url", Value(imageURL_));
  if (loadedImage_) {
    std::string size = std::to_string(loadedImage_->pixelWidth());
    size += 'x';
    size += std::to_string(loadedImage_->pixelHeight());
    into.set("loaded", Value(std::move(size)));
  }
}

}  // namespace quillet::platform
