#pragma once

#include <memory>
#include <string>

#include "platform/ui/ImageView.h"
#include "platform/ui/Label.h"
#include "platform/ui/ReusableCell.h"

namespace quillet::platform {

enum class CellAccessoryType { None, DisclosureIndicator, Checkmark };

const char* cellAccessoryName(CellAccessoryType type);

// A table row: the standard text, detail and image, an accessory mark, and
// any named subviews a screen adds (a row's own label, image or check box
// button). The standard three are subviews named "textLabel",
// "detailTextLabel" and "imageView". Main run loop thread only.
class TableViewCell : public ReusableCell {
 public:
  explicit TableViewCell(std::string reuseIdentifier);

  const std::shared_ptr<Label>& textLabel() const { return textLabel_; }
  const std::shared_ptr<Label>& detailTextLabel() const { return detailTextLabel_; }
  const std::shared_ptr<ImageView>& imageView() const { return imageView_; }
  CellAccessoryType accessoryType() const { return accessoryType_; }
  void setAccessoryType(CellAccessoryType type) { accessoryType_ = type; }

  std::string kind() const override { return "cell"; }

 protected:
  // text, detail, image, accessory, and {"views": {name: state}} for the
  // other named subviews.
  void describeState(Value& into) const override;

 private:
  std::shared_ptr<Label> textLabel_;
  std::shared_ptr<Label> detailTextLabel_;
  std::shared_ptr<ImageView> imageView_;
  CellAccessoryType accessoryType_ = CellAccessoryType::None;
};

}  // namespace quillet::platform
