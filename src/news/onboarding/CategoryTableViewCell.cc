#include "news/onboarding/CategoryTableViewCell.h"

#include "news/support/ScaledFont.h"

namespace quillet::news {

CategoryTableViewCell::CategoryTableViewCell() : TableViewCell(kIdentifier) {
  imgCategoryType = std::make_shared<platform::ImageView>("imgCategoryType");
  imgCategoryType->setCornerRadius(20);
  lblCategoryType = std::make_shared<platform::Label>("lblCategoryType");
  if (ScaledFont::screensSetFonts()) lblCategoryType->setFont(ScaledFont::scaledSystemFontWithStyle(7, 16));
  btnCheck = std::make_shared<platform::Button>("btnCheck");
  btnCheck->setImageNamed("Unchecked");
  addSubview(imgCategoryType);
  addSubview(lblCategoryType);
  addSubview(btnCheck);
}

}  // namespace quillet::news
