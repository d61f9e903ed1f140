#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/image/Image.h"
#include "platform/ui/ViewController.h"

namespace quillet::platform {

// The system's composer for a post to a social service, named by its
// service type: an initial text, links and images the reader may then edit
// and send. Nothing is sent from here: the composer records what it holds,
// and presenting it posts "screenPresented" with presentationInfo() as the
// info. Main run loop thread only.
class ComposeViewController : public ViewController {
 public:
  static constexpr const char* kIdentifier = "ComposeViewController";

  static std::shared_ptr<ComposeViewController> composeViewControllerForServiceType(std::string serviceType);
  explicit ComposeViewController(std::string serviceType);

  const std::string& serviceType() const { return serviceType_; }
  const std::string& initialText() const { return initialText_; }
  const std::vector<std::string>& urls() const { return urls_; }
  const std::vector<std::shared_ptr<const Image>>& images() const { return images_; }

  // Each returns true: the composer takes what it is given before it is shown.
  bool setInitialText(std::string text);
  bool addURL(std::string url);
  // A null image is not added (false).
  bool addImage(std::shared_ptr<const Image> image);

  // {"serviceType", "initialText", "urls": [...], "images": ["<Image WxH @Sx>", ...]}.
  Value presentationInfo() const override;

 private:
  std::string serviceType_;
  std::string initialText_;
  std::vector<std::string> urls_;
  std::vector<std::shared_ptr<const Image>> images_;
};

}  // namespace quillet::platform
