#include "platform/ui/LocalNotification.h"

namespace quillet::platform {

Value LocalNotification::toValue() const {
  Value out = Value::dictionary({{"title", Value(title)}, {"body", Value(body)}});
  if (!soundName.empty()) out.set("sound", Value(soundName));
  if (badge) out.set("badge", Value(*badge));
  if (!category.empty()) out.set("category", Value(category));
  if (!userInfo.isNil()) out.set("userInfo", userInfo);
  if (fireDate) out.set("fireDate", Value::date(*fireDate));
  return out;
}

}  // namespace quillet::platform
