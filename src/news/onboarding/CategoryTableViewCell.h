#pragma once

#include <memory>

#include "platform/ui/Button.h"
#include "platform/ui/ImageView.h"
#include "platform/ui/Label.h"
#include "platform/ui/TableViewCell.h"

namespace quillet::news {

// A row of the onboarding list ("CategoryTableViewCell"): the category's
// round icon, its name and the check box. A new row's box shows "Unchecked";
// a reused row keeps whatever its box showed before. Main thread only.
class CategoryTableViewCell : public platform::TableViewCell {
 public:
  static constexpr const char* kIdentifier = "CategoryTableViewCell";
  CategoryTableViewCell();

  std::shared_ptr<platform::ImageView> imgCategoryType;
  std::shared_ptr<platform::Label> lblCategoryType;
  std::shared_ptr<platform::Button> btnCheck;
};

}  // namespace quillet::news
