#include "news/home/HomeOutlets.h"

#include <string>

#include "news/support/ScaledFont.h"

namespace quillet::news {

namespace {

// Makes a view of type T named `name`, places it in `parent` and registers it as an outlet.
template <class T>
std::shared_ptr<T> place(platform::ViewController& screen, const std::shared_ptr<platform::View>& parent,
                         const char* name) {
  auto view = std::make_shared<T>(name);
  parent->addSubview(view);
  screen.registerOutlet(name, view);
  return view;
}

std::shared_ptr<platform::Button> button(platform::ViewController& screen, const std::shared_ptr<platform::View>& parent,
                                         const char* name, const char* title) {
  auto made = place<platform::Button>(screen, parent, name);
  made->setTitle(title);
  return made;
}

}  // namespace

HomeOutlets::HomeOutlets(platform::ViewController& screen) {
  const std::shared_ptr<platform::View>& root = screen.view();
  using platform::Button;
  using platform::ImageView;
  using platform::Label;
  using platform::View;

  NavView = place<View>(screen, root, "NavView");
  lblCategoryTitle = place<Label>(screen, NavView, "lblCategoryTitle");
  btnMenu = button(screen, NavView, "btnMenu", "Menu");
  btnRefresh = button(screen, NavView, "btnRefresh", "Reload");
  btnOption = button(screen, NavView, "btnOption", "Options");

  swipeView = place<View>(screen, root, "swipeView");
  lblNewsTitle = place<Label>(screen, swipeView, "lblNewsTitle");
  lblNewsTitle->setNumberOfLines(0);
  txtViewDetailNews = place<platform::TextView>(screen, swipeView, "txtViewDetailNews");
  txtViewDetailNews->setEditable(false);
  lblPostedBy = place<Label>(screen, swipeView, "lblPostedBy");
  imgNews = place<ImageView>(screen, swipeView, "imgNews");
  videoView = place<View>(screen, swipeView, "videoView");
  imgThumbnailVideo = place<ImageView>(screen, videoView, "imgThumbnailVideo");
  btnPlayVideo = button(screen, videoView, "btnPlayVideo", "Play");
  btnPlayVideo->setImageNamed("play");
  videoPlayerView = std::make_shared<View>("videoPlayerView");
  playerView = place<InlinePlayerView>(screen, swipeView, "playerView");
  btnFullStory = button(screen, swipeView, "btnFullStory", "Full Story");

  btnShare = button(screen, root, "btnShare", "Share");
  btnLetGo = button(screen, root, "btnLetGo", "Let Go");
  shareView = place<View>(screen, root, "shareView");

  menuView = place<View>(screen, root, "menuView");
  tblMenu = place<platform::TableView>(screen, menuView, "tblMenu");
  btnHideMenu = button(screen, menuView, "btnHideMenu", "Close");

  optionView = place<View>(screen, root, "optionView");
  lblOption = place<Label>(screen, optionView, "lblOption");
  lblOption->setText("Options");
  tblOption = place<platform::TableView>(screen, optionView, "tblOption");
  btnHideOption = button(screen, optionView, "btnHideOption", "Close");
  lblMode = place<Label>(screen, optionView, "lblMode");
  lblMode->setText("Night Mode");
  switchNightMode = place<platform::Switch>(screen, optionView, "switchNightMode");
  lblHD = place<Label>(screen, optionView, "lblHD");
  lblHD->setText("HD Images");
  switchHDImage = place<platform::Switch>(screen, optionView, "switchHDImage");
  lblNotification = place<Label>(screen, optionView, "lblNotification");
  lblNotification->setText("Notifications");
  switchNotification = place<platform::Switch>(screen, optionView, "switchNotification");
  switchNotification->setOn(true);  // as the screen's resource sets it; never stored

  collectionViewNews = place<platform::CollectionView>(screen, root, "collectionViewNews");
  lblCollection = place<Label>(screen, root, "lblCollection");

  // The phone's fonts: style and size scaled by the screen.
  auto font = [](int style, double size) { return ScaledFont::scaledSystemFontWithStyle(style, size); };
  lblNewsTitle->setFont(font(9, 20));
  txtViewDetailNews->setFont(font(7, 16));
  lblPostedBy->setFont(font(7, 10));
  btnFullStory->setFont(font(7, 10));
  for (const auto& label : {lblCategoryTitle, lblOption, lblCollection}) label->setFont(font(9, 17));
  for (const auto& label : {lblHD, lblMode, lblNotification}) label->setFont(font(7, 16));
}

}  // namespace quillet::news
