#pragma once

#include <string>

namespace quillet::platform {

// A platform object that a Value can carry (an image, ...). Shared as
// std::shared_ptr<const ValueObject>, so it must be immutable once made or
// guard itself; a Value holding one compares equal only to the same object.
class ValueObject {
 public:
  virtual ~ValueObject() = default;
  // The text "%@" gives for the object, such as "<Image 160x120 @2x>".
  virtual std::string description() const = 0;
};

}  // namespace quillet::platform
