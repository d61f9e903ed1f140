#include "platform/ui/TableViewCell.h"

namespace quillet::platform {

const char* cellAccessoryName(CellAccessoryType type) {
  switch (type) {
    case CellAccessoryType::None:
      return "none";
    case CellAccessoryType::DisclosureIndicator:
      return "disclosure";
    case CellAccessoryType::Checkmark:
      return "checkmark";
  }
  return "none";
}

TableViewCell::TableViewCell(std::string reuseIdentifier)
    : ReusableCell(std::move(reuseIdentifier)),
      textLabel_(std::make_shared<Label>("textLabel")),
      detailTextLabel_(std::make_shared<Label>("detailTextLabel")),
      imageView_(std::make_shared<ImageView>("imageView")) {
  addSubview(textLabel_);
  addSubview(detailTextLabel_);
  addSubview(imageView_);
}

void TableViewCell::describeState(Value& into) const {
  into.set("identifier", Value(reuseIdentifier()));
  if (!textLabel_->text().empty()) into.set("text", Value(textLabel_->text()));
  if (!detailTextLabel_->text().empty()) into.set("detail", Value(detailTextLabel_->text()));
  if (!imageView_->image().empty()) into.set("image", Value(imageView_->image()));
  into.set("accessory", Value(cellAccessoryName(accessoryType_)));
  Value views;
  for (const auto& child : subviews()) {
    if (child == textLabel_ || child == detailTextLabel_ || child == imageView_ || child->name().empty()) continue;
    views.set(child->name(), child->describe());
  }
  if (!views.isNil()) into.set("views", std::move(views));
}

}  // namespace quillet::platform
