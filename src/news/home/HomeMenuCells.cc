#include "news/home/HomeMenuCells.h"

#include "news/support/ScaledFont.h"

namespace quillet::news {

namespace {

// Adds an icon and a label named as given to `cell`, in the rows' font.
template <class Icon, class Text>
void buildRow(platform::TableViewCell& cell, Icon& icon, Text& label, const char* iconName, const char* labelName) {
  icon = std::make_shared<platform::ImageView>(iconName);
  label = std::make_shared<platform::Label>(labelName);
  if (ScaledFont::screensSetFonts()) label->setFont(ScaledFont::scaledSystemFontWithStyle(7, 16));
  cell.addSubview(icon);
  cell.addSubview(label);
}

}  // namespace

HomeMenuTableViewCell::HomeMenuTableViewCell() : TableViewCell(kIdentifier) {
  buildRow(*this, imgNewsType, lblNewsType, "imgNewsType", "lblNewsType");
}

OptionsTableViewCell::OptionsTableViewCell() : TableViewCell(kIdentifier) {
  buildRow(*this, imgOptionType, lblOptionType, "imgOptionType", "lblOptionType");
}

}  // namespace quillet::news
