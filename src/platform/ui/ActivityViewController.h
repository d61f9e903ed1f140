#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/image/Image.h"
#include "platform/ui/Rect.h"
#include "platform/ui/ViewController.h"

namespace quillet::platform {

// One thing handed to the share sheet: a text, a URL or an image. Plain data.
struct ActivityItem {
  enum class Kind { Text, URL, Image };
  Kind kind = Kind::Text;
  std::string text;                    // the text or the URL
  std::shared_ptr<const Image> image;  // for Kind::Image

  static ActivityItem textItem(std::string text) { return {Kind::Text, std::move(text), nullptr}; }
  static ActivityItem urlItem(std::string url) { return {Kind::URL, std::move(url), nullptr}; }
  static ActivityItem imageItem(std::shared_ptr<const Image> image) { return {Kind::Image, "", std::move(image)}; }
};

// The system's share sheet: the items to share, in order, and the activity
// types the sheet must not offer. On a tablet it is shown in a popover
// anchored to a rectangle of the presenter's view (setPopover before
// presenting); on a phone it is presented as it is. No activity is
// performed here: the sheet records what it would offer, and presenting it
// posts "screenPresented" with presentationInfo() as the info.
// Main run loop thread only.
class ActivityViewController : public ViewController {
 public:
  static constexpr const char* kIdentifier = "ActivityViewController";
  // The popover's permitted arrow directions: up 1, down 2, left 4, right 8.
  static constexpr unsigned kPopoverArrowDirectionAny = 15;

  explicit ActivityViewController(std::vector<ActivityItem> activityItems);

  const std::vector<ActivityItem>& activityItems() const { return items_; }
  const std::vector<std::string>& excludedActivityTypes() const { return excluded_; }
  void setExcludedActivityTypes(std::vector<std::string> types) { excluded_ = std::move(types); }

  struct Popover {
    Rect sourceRect;
    unsigned permittedArrowDirections = kPopoverArrowDirectionAny;
  };
  void setPopover(Popover popover) { popover_ = popover; }
  const std::optional<Popover>& popover() const { return popover_; }

  // {"items": [{"text"} | {"url"} | {"image": "<Image WxH @Sx>"}], "excludedActivityTypes": [...],
  //  "popover": {"rect", "permittedArrowDirections"} when in a popover}.
  Value presentationInfo() const override;

 private:
  std::vector<ActivityItem> items_;
  std::vector<std::string> excluded_;
  std::optional<Popover> popover_;
};

}  // namespace quillet::platform
