#pragma once

#include "platform/ui/ReusableCell.h"

namespace quillet::platform {

// An item of a collection view; screens add named subviews. Main run loop thread only.
class CollectionViewCell : public ReusableCell {
 public:
  using ReusableCell::ReusableCell;
  std::string kind() const override { return "collectionCell"; }

 protected:
  void describeState(Value& into) const override { into.set("identifier", Value(reuseIdentifier())); }
};

}  // namespace quillet::platform
