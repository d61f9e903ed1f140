#pragma once

#include <memory>
#include <string>

#include "platform/image/Image.h"
#include "platform/ui/View.h"

namespace quillet::platform {

// An image shown by name (a packaged image such as "Splash") or loaded from
// a URL. A URL load shows its placeholder until the loaded image is given by
// setImage() (or imageDidLoad() is called) by whoever fetched it. Main run
// loop thread only.
class ImageView : public View {
 public:
  using View::View;

  // The image on show: an image name, the placeholder of a pending URL load,
  // or the loaded URL; empty for none.
  const std::string& image() const { return image_; }
  // The URL of the last setImageWithURL, empty when the image came by name.
  const std::string& imageURL() const { return imageURL_; }
  // The loaded image on show, or null.
  const std::shared_ptr<const Image>& loadedImage() const { return loadedImage_; }

  // Each of these drops the loaded image.
  void setImageNamed(std::string name);
  void setImageWithURL(std::string url, std::string placeholderName = "");
  void clearImage();
  // The image at imageURL() arrived and is now shown.
  void imageDidLoad();
  // Shows a loaded image (null shows none); with a URL pending, that URL's image counts as arrived.
  void setImage(std::shared_ptr<const Image> image);

  std::string kind() const override { return "image"; }

 protected:
  // "image", "url" when loading by URL, "loaded": "<w>x<h>" (pixels) when a loaded image is on show.
  void describeState(Value& into) const override;

 private:
  std::string image_;
  std::string imageURL_;
  std::shared_ptr<const Image> loadedImage_;
};

}  // namespace quillet::platform
