#include "platform/ui/ImageView.h"

namespace quillet::platform {

void ImageView::setImageNamed(std::string name) {
  image_ = std::move(name);
  imageURL_.clear();
}

void ImageView::setImageWithURL(std::string url, std::string placeholderName) {
  imageURL_ = std::move(url);
  image_ = std::move(placeholderName);
}

void ImageView::imageDidLoad() {
  if (!imageURL_.empty()) image_ = imageURL_;
}

void ImageView::clearImage() {
  image_.clear();
  imageURL_.clear();
}

void ImageView::describeState(Value& into) const {
  into.set("image", Value(image_));
  if (!imageURL_.empty()) into.set("url", Value(imageURL_));
}

}  // namespace quillet::platform
