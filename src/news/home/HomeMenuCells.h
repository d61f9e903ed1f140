#pragma once

#include <memory>
#include <string>

#include "platform/ui/ImageView.h"
#include "platform/ui/Label.h"
#include "platform/ui/TableViewCell.h"

namespace quillet::news {

// A row of the side menu ("NewsCell"): the feed's icon and name.
class HomeMenuTableViewCell : public platform::TableViewCell {
 public:
  static constexpr const char* kIdentifier = "NewsCell";
  HomeMenuTableViewCell();
  std::shared_ptr<platform::ImageView> imgNewsType;
  std::shared_ptr<platform::Label> lblNewsType;
};

// A row of the options panel ("OptionsTableViewCell").
class OptionsTableViewCell : public platform::TableViewCell {
 public:
  static constexpr const char* kIdentifier = "OptionsTableViewCell";
  OptionsTableViewCell();
  std::shared_ptr<platform::ImageView> imgOptionType;
  std::shared_ptr<platform::Label> lblOptionType;
};

}  // namespace quillet::news
