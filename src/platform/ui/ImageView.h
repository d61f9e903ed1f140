#pragma once

#include <string>

#include "platform/ui/View.h"

namespace quillet::platform {

// An image shown by name (a packaged image such as "Splash") or loaded from
// a URL. A URL load shows its placeholder until imageDidLoad() is called by
// whoever fetched the image. Main run loop thread only.
class ImageView : public View {
 public:
  using View::View;

  // The image on show: an image name, the placeholder of a pending URL load,
  // or the loaded URL; empty for none.
  const std::string& image() const { return image_; }
  // The URL of the last setImageWithURL, empty when the image came by name.
  const std::string& imageURL() const { return imageURL_; }

  void setImageNamed(std::string name);
  void setImageWithURL(std::string url, std::string placeholderName = "");
  // The image at imageURL() arrived and is now shown.
  void imageDidLoad();
  void clearImage();

  std::string kind() const override { return "image"; }

 protected:
  void describeState(Value& into) const override;

 private:
  std::string image_;
  std::string imageURL_;
};

}  // namespace quillet::platform
