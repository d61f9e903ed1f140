#include "platform/ui/ComposeViewController.h"

namespace quillet::platform {

std::shared_ptr<ComposeViewController> ComposeViewController::composeViewControllerForServiceType(
    std::string serviceType) {
  return std::make_shared<ComposeViewController>(std::move(serviceType));
}

ComposeViewController::ComposeViewController(std::string serviceType)
    : ViewController(kIdentifier), serviceType_(std::move(serviceType)) {}

bool ComposeViewController::setInitialText(std::string text) {
  initialText_ = std::move(text);
  return true;
}

bool ComposeViewController::addURL(std::string url) {
  urls_.push_back(std::move(url));
  return true;
}

bool ComposeViewController::addImage(std::shared_ptr<const Image> image) {
  if (!image) return false;
  images_.push_back(std::move(image));
  return true;
}

Value ComposeViewController::presentationInfo() const {
  Value urls = Value::array({});
  for (const auto& url : urls_) urls.append(Value(url));
  Value images = Value::array({});
  for (const auto& image : images_) images.append(Value(image->description()));
  return Value::dictionary({{"serviceType", Value(serviceType_)},
                            {"initialText", Value(initialText_)},
                            {"urls", std::move(urls)},
                            {"images", std::move(images)}});
}

}  // namespace quillet::platform
