#include "platform/ui/ActivityViewController.h"

#include "platform/ui/RectValue.h"

namespace quillet::platform {

namespace {

Value itemValue(const ActivityItem& item) {
  switch (item.kind) {
    case ActivityItem::Kind::Text:
      return Value::dictionary({{"text", Value(item.text)}});
    case ActivityItem::Kind::URL:
      return Value::dictionary({{"url", Value(item.text)}});
    case ActivityItem::Kind::Image:
      return Value::dictionary({{"image", Value(item.image ? item.image->description() : "(null)")}});
  }
  return Value();
}

}  // namespace

ActivityViewController::ActivityViewController(std::vector<ActivityItem> activityItems)
    : ViewController(kIdentifier), items_(std::move(activityItems)) {}

Value ActivityViewController::presentationInfo() const {
  Value items = Value::array({});
  for (const auto& item : items_) items.append(itemValue(item));
  Value excluded = Value::array({});
  for (const auto& type : excluded_) excluded.append(Value(type));
  Value info = Value::dictionary({{"items", std::move(items)}, {"excludedActivityTypes", std::move(excluded)}});
  if (popover_) {
    info.set("popover", Value::dictionary({{"rect", rectValue(popover_->sourceRect)},
                                           {"permittedArrowDirections", Value(popover_->permittedArrowDirections)}}));
  }
  return info;
}

}  // namespace quillet::platform
